#include "siblings/user/CanAccessResources.h"

namespace {

ResourcePolicy g_policy = nullptr;

}  // namespace

bool CanAccessResources(int kind, const wchar* name, CWnd* parent)
{
    return g_policy == nullptr || g_policy(kind, name != nullptr ? name : u"", parent);
}

void SetResourcePolicy(ResourcePolicy policy)
{
    g_policy = policy;
}
