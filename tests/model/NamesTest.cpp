#include "model/DeliveryFormat.h"
#include "model/ProcessingLevel.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

TEST(NamesTest, DeliveryFormatsAreNamedAsTheServiceKnowsThem)
{
    const QStringList names{u"all"_s,   u"ASCII"_s, u"Ostrova XML"_s,   u"RealLegal XML"_s,         u"PTF/VID"_s,
                            u"MDB"_s,   u"CMS"_s,   u"DepoSmart XML"_s, u"Flash CS3 Caption XML"_s, u"LOG"_s,
                            u"custom"_s};
    EXPECT_EQ(deliveryFormatNames(), names);
    for (int i = 0; i < names.size(); ++i) {
        EXPECT_EQ(deliveryFormatName(i), names.at(i));
        EXPECT_EQ(deliveryFormatNamed(names.at(i)), static_cast<DeliveryFormat>(i));
    }
    EXPECT_EQ(deliveryFormatNamed(u"LOG"_s), DeliveryFormatLOG);
    EXPECT_EQ(deliveryFormatNamed(u"custom"_s), DeliveryFormatCustom);
}

TEST(NamesTest, ProcessingLevelsAreNamedInTheOrderOfTheirNumbers)
{
    const QStringList names{u"AutoSync"_s, u"Man24"_s, u"Man48"_s, u"Man72"_s, u"Unattended"_s};
    EXPECT_EQ(processingLevelNames(), names);
    for (int i = 0; i < names.size(); ++i) {
        EXPECT_EQ(processingLevelName(i), names.at(i));
        EXPECT_EQ(processingLevelNamed(names.at(i)), static_cast<ProcessingLevel>(i));
    }
    EXPECT_EQ(processingLevelNamed(u"Unattended"_s), ProcessingLevelUnattended);
}

TEST(NamesTest, NamesAreFoundWhateverTheirLetterCase)
{
    EXPECT_EQ(deliveryFormatNamed(u"ptf/vid"_s), DeliveryFormatPTFVID);
    EXPECT_EQ(deliveryFormatNamed(u"OSTROVA xml"_s), DeliveryFormatOstrovaXML);
    EXPECT_EQ(processingLevelNamed(u"autosync"_s), ProcessingLevelAutoSync);
    EXPECT_EQ(processingLevelNamed(u"MAN72"_s), ProcessingLevelMan72);
}

TEST(NamesTest, WhatIsNoNameOrNumberIsNothing)
{
    for (const QString& name : {u""_s, u"XML"_s, u" all"_s, u"0"_s}) {
        EXPECT_EQ(deliveryFormatNamed(name), std::nullopt) << qPrintable(name);
        EXPECT_EQ(processingLevelNamed(name), std::nullopt) << qPrintable(name);
    }
    for (const int number : {-1, 11, 1000}) {
        EXPECT_EQ(deliveryFormatName(number), QString());
        EXPECT_EQ(processingLevelName(number), QString());
    }
    EXPECT_EQ(processingLevelName(5), QString());
}

} // namespace
