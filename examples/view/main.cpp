// A complete host with a window: one page of live controls on the first device of a document.
#include <comm/ZRCommSystem.h>
#include <comm/ZRMainCfg.h>
#include <controls/ui/ZRBarValueControl.h>
#include <controls/ui/ZRBaseViewDlg.h>
#include <controls/ui/ZRValueControl.h>
#include <devices/modbus/ModbusDrivers.h>

#include <cstdio>
#include <filesystem>
#include <QApplication>
#include <QTimer>
#include <QVBoxLayout>
#include <string>
#include <vector>

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    std::vector<std::string> errors;
    zr::modbus::RegisterDrivers(DEVICE_PROFILES, errors);
    ZRMainCfg document;
    ZRCommSystem system;
    if (argc < 2 || !document.Load(std::filesystem::path(argv[1]))) {
        std::fprintf(stderr, "usage: view CONFIG [SECONDS PICTURE]\n%s\n", document.Error().Message().c_str());
        return 2;
    }
    if (const XmlNode* const node = document.root->Node(u"CommSystem"); node != nullptr) {
        system.LoadCfg(*node);
    }
    system.Start();
    const ZRBasicString device = system.DriversBegin() != system.DriversEnd() ? (*system.DriversBegin())->name : u"";

    ZRBaseViewDlg page(1);
    QVBoxLayout rows(&page);
    ZRValueControl frequency(&page, 100);
    frequency.SetupVariable((device + u".F").CStr(), 128);
    ZRBarValueControl voltage(&page, 101);
    voltage.SetupBar(18, 100);
    voltage.SetupVariable(0, (device + u".U1").CStr());
    voltage.SetupChecks(2 | 4 | 8, 10.0, 15.0, 10.0, 15.0, 230.0);  // 10 % and 15 % around 230 V
    voltage.SetLabel(u"U1");
    rows.addWidget(&frequency);
    rows.addWidget(&voltage);
    page.resize(420, 140);

    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] { frequency.Update(), voltage.Update(); });
    timer.start(250);
    if (argc == 4) {
        QTimer::singleShot(1000 * std::stoi(argv[2]), [&] { page.grab().save(argv[3]), QApplication::quit(); });
    }
    page.show();
    return QApplication::exec();
}
