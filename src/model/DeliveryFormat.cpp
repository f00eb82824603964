#include "model/DeliveryFormat.h"

namespace {

// In the order of the numbers.
const QStringList& names()
{
    static const QStringList theNames{
        QStringLiteral("all"),           QStringLiteral("ASCII"),         QStringLiteral("Ostrova XML"),
        QStringLiteral("RealLegal XML"), QStringLiteral("PTF/VID"),       QStringLiteral("MDB"),
        QStringLiteral("CMS"),           QStringLiteral("DepoSmart XML"), QStringLiteral("Flash CS3 Caption XML"),
        QStringLiteral("LOG"),           QStringLiteral("custom"),
    };
    return theNames;
}

} // namespace

QString deliveryFormatName(int deliveryFormat)
{
    return names().value(deliveryFormat);
}

std::optional<DeliveryFormat> deliveryFormatNamed(const QString& name)
{
    for (qsizetype i = 0; i < names().size(); ++i) {
        if (names().at(i).compare(name, Qt::CaseInsensitive) == 0)
            return static_cast<DeliveryFormat>(i);
    }
    return std::nullopt;
}

QStringList deliveryFormatNames()
{
    return names();
}
