#include "comm/ZRMainCfg.h"

ZRMainCfg* ZRMainCfg::instance = nullptr;

ZRMainCfg::ZRMainCfg()
{
    instance = this;
}

ZRMainCfg::~ZRMainCfg()
{
    instance = nullptr;
    Reset(ZRBasicString());
}

void ZRMainCfg::Reset(const ZRBasicString& fileName)
{
    XmlDocument::Reset();
    SetFileName(fileName.CStr());
}
