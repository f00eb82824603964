#include "commands/MachineUID.h"

#include "support/TemporaryHome.h"

using namespace Qt::StringLiterals;

class MachineUIDTest : public TemporaryHome
{
protected:
    [[nodiscard]] QString identifier() const { return MachineUID::machineUniqueID(path(u"root"_s)); }
};

TEST_F(MachineUIDTest, AMachineThatTellsNothingIsUnknown)
{
    EXPECT_EQ(identifier(), u"unknown"_s);
}

TEST_F(MachineUIDTest, TheIdentifierIsAHashThatStaysTheSame)
{
    writeFile(u"root/etc/machine-id"_s, "0123456789abcdef0123456789abcdef\n");
    EXPECT_EQ(identifier(), u"622565c63c4de0dc2cc351d6bea4c1ad"_s);
    EXPECT_EQ(identifier(), u"622565c63c4de0dc2cc351d6bea4c1ad"_s);
}

TEST_F(MachineUIDTest, TheIdentifierIsReadAfreshAtEveryCall)
{
    writeFile(u"root/etc/machine-id"_s, "0123456789abcdef0123456789abcdef\n");
    const QString first = identifier();
    writeFile(u"root/etc/machine-id"_s, "fedcba9876543210fedcba9876543210\n");
    EXPECT_NE(identifier(), first);
}

TEST_F(MachineUIDTest, TheMessageBusIdentifierStandsInForAMissingOrUnsetOne)
{
    writeFile(u"root/var/lib/dbus/machine-id"_s, "0123456789abcdef0123456789abcdef\n");
    EXPECT_EQ(identifier(), u"622565c63c4de0dc2cc351d6bea4c1ad"_s);
    writeFile(u"root/etc/machine-id"_s, "uninitialized\n");
    EXPECT_EQ(identifier(), u"622565c63c4de0dc2cc351d6bea4c1ad"_s);
    writeFile(u"root/etc/machine-id"_s, "\n");
    EXPECT_EQ(identifier(), u"622565c63c4de0dc2cc351d6bea4c1ad"_s);
}

TEST_F(MachineUIDTest, AHardwareSerialStandsInWhereThereIsNoIdentifier)
{
    writeFile(u"root/sys/firmware/devicetree/base/serial-number"_s, QByteArray("1000abcd\0", 9));
    EXPECT_EQ(identifier(), u"1000abcd"_s);
    writeFile(u"root/sys/class/dmi/id/product_serial"_s, "C02XY\n");
    EXPECT_EQ(identifier(), u"C02XY"_s);
    writeFile(u"root/sys/class/dmi/id/product_serial"_s, " \n");
    EXPECT_EQ(identifier(), u"1000abcd"_s);
}

TEST_F(MachineUIDTest, ThisMachineIsTheSameAtEveryCall)
{
    EXPECT_FALSE(MachineUID::machineUniqueID().isEmpty());
    EXPECT_EQ(MachineUID::machineUniqueID(), MachineUID::machineUniqueID());
}
