#include <gtest/gtest.h>

#include "launch/DeviceAddress.h"

namespace sweepwright::launch {
namespace {

TEST(DeviceAddress, IsUsbOrWhatSshTakes) {
    EXPECT_TRUE(DeviceAddress::parse("usb")->usb);
    const auto whole = DeviceAddress::parse("root@phone.local:2222");
    ASSERT_TRUE(whole.has_value());
    EXPECT_FALSE(whole->usb);
    EXPECT_EQ(whole->name, "root@phone.local:2222");
    EXPECT_EQ(whole->login, "root@phone.local");
    EXPECT_EQ(whole->port, "2222");
    const auto host = DeviceAddress::parse("192.168.1.7");
    ASSERT_TRUE(host.has_value());
    EXPECT_EQ(host->login, "192.168.1.7");
    EXPECT_EQ(host->port, "");
    const auto six = DeviceAddress::parse("mobile@[fe80::1%eth0]:22");
    ASSERT_TRUE(six.has_value());
    EXPECT_EQ(six->login, "mobile@[fe80::1%eth0]");
    EXPECT_EQ(six->port, "22");
}

TEST(DeviceAddress, IsNothingThatSshCouldTakeForAnOptionOrThatLeavesTheFolder) {
    for (const char* wrong : {"",
                              "-oProxyCommand=x",
                              "root@-oProxyCommand=x",
                              "-x@host",
                              "..",
                              ".",
                              "a/b",
                              "../usb",
                              "host:",
                              "host:0",
                              "host:65536",
                              "host:port",
                              "host:22:23",
                              "@host",
                              "root@",
                              "[]",
                              "[::1",
                              "[::1]x",
                              "a b",
                              "a\nb",
                              "a;b",
                              "$(x)",
                              "root@[/etc]"})
        EXPECT_FALSE(DeviceAddress::parse(wrong).has_value()) << wrong;
}

}  // namespace
}  // namespace sweepwright::launch
