#pragma once

#include <QString>
#include <QStringList>

#include <optional>

// The format of a job's deliverables. The numbers are archived.
enum DeliveryFormat : int {
    DeliveryFormatAll = 0,
    DeliveryFormatASCII = 1,
    DeliveryFormatOstrovaXML = 2,
    DeliveryFormatRealLegalXML = 3,
    DeliveryFormatPTFVID = 4,
    DeliveryFormatMDB = 5,
    DeliveryFormatCMS = 6,
    DeliveryFormatDepoSmartXML = 7,
    DeliveryFormatFlashCS3CaptionXML = 8,
    DeliveryFormatLOG = 9,
    DeliveryFormatCustom = 10,
};

// The name that the service knows the format by; empty for a number that is no format.
[[nodiscard]] QString deliveryFormatName(int deliveryFormat);
// Letter case does not matter.
[[nodiscard]] std::optional<DeliveryFormat> deliveryFormatNamed(const QString& name);
// In the order of their numbers.
[[nodiscard]] QStringList deliveryFormatNames();
