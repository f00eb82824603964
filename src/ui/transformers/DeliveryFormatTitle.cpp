#include "ui/transformers/DeliveryFormatTitle.h"

#include "model/DeliveryFormat.h"

#include <QCoreApplication>

QString deliveryFormatTitle(int deliveryFormat)
{
    switch (deliveryFormat) {
    case DeliveryFormatAll:
        return QCoreApplication::translate("DeliveryFormat", "All formats");
    case DeliveryFormatCustom:
        return QCoreApplication::translate("DeliveryFormat", "Custom");
    default:
        return deliveryFormatName(deliveryFormat);
    }
}
