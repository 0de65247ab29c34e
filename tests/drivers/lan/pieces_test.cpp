// What needs no BMC: the bytes of bridged messages, the texts of hosts, and a module that is not there.
#include "drivers/bridgedmessage.h"
#include "drivers/lan/host.h"
#include "drivers/lan/lanloader.h"

#include <gtest/gtest.h>

namespace {

using namespace Frudata_Driver;
using BYTES = std::vector<UINT8>;

// Read FRU Data for 0x2C on channel 6, LUN 1, sequence 63; the last byte of each sum makes it 0 modulo 256.
const BYTES SEND{0x46, 0x2C, 0x29, 0xAB, 0x20, 0xFE, 0x11, 0x07, 0x00, 0x01, 0x08, 0xC1};

TEST(BridgedMessage, IsTakenApartAndAnswered) {
    BRIDGED_REQUEST request;
    ASSERT_EQ(ParseSendMessage(SEND, request), COMPLETION_SUCCESS);
    EXPECT_EQ((BYTES{request.channel, request.responder, request.netFn, request.lun, request.requester,
                     request.requesterLun, request.sequence, request.cmd}),
              (BYTES{6, 0x2C, 0x0A, 1, 0x20, 2, 63, 0x11}));
    EXPECT_EQ(BYTES(request.data.begin(), request.data.end()), (BYTES{0x07, 0x00, 0x01, 0x08}));
    const struct {
        UINT8 completionCode;
        BYTES data;
        BYTES message;
    } answers[] = {{0x00, {0x01, 0xAA}, {0x06, 0x2E, 0xB2, 0x2C, 0xFD, 0x11, 0x00, 0x01, 0xAA, 0x1B}},
                   {0xC3, {}, {0x06, 0x2E, 0xB2, 0x2C, 0xFD, 0x11, 0xC3, 0x03}}};
    for (const auto& answer : answers) {
        BYTES message(answer.message.size() + 1, 0xEE);
        for (std::size_t room = 0; room < answer.message.size(); ++room)
            EXPECT_EQ(FrameBridgedAnswer(request, answer.completionCode, answer.data, std::span(message).first(room)),
                      0U);
        EXPECT_EQ(message, BYTES(message.size(), 0xEE));
        EXPECT_EQ(FrameBridgedAnswer(request, answer.completionCode, answer.data, message), answer.message.size());
        message.pop_back();
        EXPECT_EQ(message, answer.message);
    }
}

TEST(BridgedMessage, ShortOrSpoiledIsRefused) {
    BRIDGED_REQUEST request;
    // Without data it has 8 bytes: none shorter is one.
    for (std::size_t length = 0; length < 8; ++length)
        EXPECT_EQ(ParseSendMessage(std::span(SEND).first(length), request), 0xC7) << length;
    EXPECT_EQ(ParseSendMessage(BYTES{0x00, 0x30, 0x18, 0xB8, 0x20, 0x06, 0x01, 0xD9}, request), 0x00);
    EXPECT_TRUE(request.data.empty());
    for (std::size_t index = 1; index < SEND.size(); ++index) {
        BYTES spoiled = SEND;
        spoiled[index] ^= 0x04;
        EXPECT_EQ(ParseSendMessage(spoiled, request), 0xCC) << index;
    }
}

TEST(Host, IsReadFromATextOrRefused) {
    const std::string longest(253, 'n');
    const struct {
        std::string text;
        std::string name; ///< empty: refused
        UINT16 port;
        std::string reason;
    } rows[] = {{"bmc-7.example", "bmc-7.example", 0, ""},
                {"192.0.2.7:1", "192.0.2.7", 1, ""},
                {"::1", "::1", 0, ""},
                {"[::1]", "::1", 0, ""},
                {"[fe80::1%eth0]:65535", "fe80::1%eth0", 65535, ""},
                {longest + ":623", longest, 623, ""},
                {longest + "n", "", 0, "254 bytes, at most 253"},
                {"", "", 0, "name is missing"},
                {":623", "", 0, "name is missing"},
                {"[]:623", "", 0, "name is missing"},
                {"x:", "", 0, "from 1 to 65535"},
                {"x:0", "", 0, "from 1 to 65535"},
                {"x:65536", "", 0, "from 1 to 65535"},
                {"x:99999999999", "", 0, "from 1 to 65535"},
                {"x:-1", "", 0, "from 1 to 65535"},
                {"x:6 ", "", 0, "from 1 to 65535"},
                {std::string("x\0y", 3), "", 0, "control character"},
                {"x\n:623", "", 0, "control character"},
                {"a:b:623", "", 0, "no IPv6 address"},
                {"[::1", "", 0, "[ADDRESS]:PORT"},
                {"[::1]623", "", 0, "[ADDRESS]:PORT"},
                {"x]:623", "", 0, "bracket"}};
    for (const auto& row : rows) {
        std::string message;
        const NETWORK_HOST host = ParseHost(row.text, message).value_or(NETWORK_HOST{});
        EXPECT_EQ(host.name, row.name) << row.text;
        EXPECT_EQ(host.port, row.port) << row.text;
        EXPECT_NE(message.find(row.reason), std::string::npos) << row.text << ": " << message;
        EXPECT_EQ(message.empty(), row.reason.empty()) << row.text << ": " << message;
    }
}

TEST(Loader, SaysWhatToInstall) {
    for (const char* path : {"", "/nonexistent/frudata-lan.so", "/dev/null"}) {
        std::string message;
        EXPECT_EQ(LoadLan(path, message), nullptr);
        EXPECT_NE(message.find("package frudata-lan"), std::string::npos);
        EXPECT_NE(message.find(path), std::string::npos) << message;
    }
}

TEST(Loader, WithoutASessionThereIsNoDriver) {
    const _IMBPREQUESTDATA request{};
    UINT8 data[1];
    int length = 1;
    UINT8 completionCode = 0;
    EXPECT_EQ(LanOpenImb(), 0);
    EXPECT_NE(LanSendTimedImbpRequest(&request, 100, data, &length, &completionCode), 0);
}

} // namespace
