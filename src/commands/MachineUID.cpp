#include "commands/MachineUID.h"

#include <QCryptographicHash>
#include <QFile>
#include <QMessageAuthenticationCode>

namespace {

QByteArray firstLine(const QString& path)
{
    QFile file(path);
    // A device tree ends its texts with a NUL.
    return file.open(QIODevice::ReadOnly) ? file.readLine(256).replace('\0', "").trimmed() : QByteArray();
}

} // namespace

QString MachineUID::machineUniqueID(const QString& root)
{
    for (const char* path : {"/etc/machine-id", "/var/lib/dbus/machine-id"}) {
        const QByteArray id = firstLine(root + QString::fromLatin1(path));
        if (!id.isEmpty() && id != "uninitialized") {
            return QString::fromLatin1(
                QMessageAuthenticationCode::hash(id, "Quillpost", QCryptographicHash::Sha256).toHex().left(32));
        }
    }
    for (const char* path : {"/sys/class/dmi/id/product_serial", "/sys/firmware/devicetree/base/serial-number"}) {
        const QByteArray serial = firstLine(root + QString::fromLatin1(path));
        if (!serial.isEmpty())
            return QString::fromUtf8(serial);
    }
    return QStringLiteral("unknown");
}
