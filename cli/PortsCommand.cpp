#include "cli/PortsCommand.h"

#include "cli/CliContext.h"
#include "device/SerialPortList.h"

int PortsCommand::run(const QStringList &arguments, CliContext &context)
{
    if (CliContext::asksForHelp(arguments))
        return context.help(usage());
    if (arguments.size() > 1)
        return context.fail(QStringLiteral("ports takes no arguments"));
    context.out() << "port;description;manufacturer;unit\n";
    for (const SerialPortList::Entry &e : SerialPortList::system()()) {
        const bool unit = !SerialPortList::isBluetooth(e) && SerialPortList::describesUnit(e);
        context.out() << CliContext::tableLine(
                             {e.portName, e.description, e.manufacturer,
                              unit ? QStringLiteral("yes") : QStringLiteral("no")})
                      << '\n';
    }
    context.out().flush();
    return 0;
}
