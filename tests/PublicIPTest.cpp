#include "LoadedPlugIn.h"
#include "WebServices.h"

#include "network/GetClientPublicIP.h"

#include <algorithm>
#include <fstream>
#include <iterator>

/// The public address, which the loaded plug-in requests on the tests' own network. Each case chooses the
/// behaviour of the services.

namespace {

using Kind = Behaviour::Kind;
using Clock = std::chrono::steady_clock;

const std::string kHeaders = "HTTP/1.1 200 OK\r\nContent-Type: text/plain";
const std::string kClose = kHeaders + "\r\nConnection: close\r\n\r\n";
const std::string kChunked = kHeaders + "\r\nTransfer-Encoding: chunked\r\n\r\n";
const std::string kNotAvailable = "Public IP is not available";

class PublicIP : public LoadedPlugIn {
protected:
    std::string ask() { return textOf("Kestrel_GetClientPublicIPAddress"); }
    static double secondsOf(const std::function<void()>& action) {
        const auto start = Clock::now();
        action();
        return std::chrono::duration<double>(Clock::now() - start).count();
    }
};

TEST_F(PublicIP, isFoundInTheResponsesOfTheServices) {
    const std::string page = "<html><head><title>Current IP Check</title></head><body>";
    const struct {
        int service;
        std::string response;
        std::string result;
    } cases[] = {
        {2, kHeaders + "\r\n\r\n203.0.113.7", "203.0.113.7"},
        {2, kHeaders + "\r\n\r\na.b.c.d", "a.b.c.d"},
        {2, kHeaders + "\r\n\r\n...", "..."},
        {2, kHeaders + "\r\n\r\n1.2.3.4" + std::string("\0 56", 4), "1.2.3.4"},
        {2, kHeaders + "\r\n\r\n203.0.113", "-8"},
        {2, kHeaders + "\r\n\r\n1.2.3.4.5", "-8"},
        {2, kHeaders + "\r\n\r\n1234.1.1.1", "-8"},
        {2, kHeaders + "\r\n\r\n1.1.1.1234", "-8"},
        {2, kHeaders + "\r\n\r\n255.255.255.255.", "-8"},
        {2, kHeaders + "\r\n", "-8"},
        {2, kHeaders + std::string("\0\r\n\r\n1.2.3.4", 12), "-8"},
        {2, "1.2.3.4", "-8"},
        {2, "", "-8"},
        {5, kClose + "203.0.113.7", "203.0.113.7"},
        {5, kHeaders + "\r\n\r\n203.0.113.7", "-8"},
        {6, kChunked + "b\r\n203.0.113.7\r\n0\r\n\r\n", "203.0.113.7"},
        {6, kChunked + "b\r\n203.0.113.7", "-8"},
        {6, kChunked + "c\r\n203.0.113.77\r\n0\r\n\r\n", "-8"},
        {6, kChunked + "b\r\n\r\n", "-8"},
        {8, kClose + "<p>Your IP is 203.0.113.7</p>", "203.0.113.7"},
        {8, kClose + "<p>Your IP is 203.0.113.7", "-8"},
        {8, kClose + "<p>Your IP is </p>", "-8"},
        {8, kClose + "<p>Your IP is ", "-8"},
        {8, kClose + "<p>Your ip is 203.0.113.7</p>", "-8"},
        {9, kClose + page + "Current IP Address: 203.0.113.7</body></html>", "203.0.113.7"},
        {9, kClose + page + "Current IP Address: 255.255.255.2550</body></html>", "-8"},
        // The first 16,000 bytes are searched, including the headers.
        {8, std::string(15'982, ' ') + "Your IP is 1.2.3.4<!>", "-8"},
        {8, std::string(15'981, ' ') + "Your IP is 1.2.3.4<!>", "1.2.3.4"},
        {2, "\r\n\r\n" + std::string(16'000, '.'), "-8"},
    };
    for (const auto& [service, response, result] : cases) {
        const std::string what = std::to_string(service) + " " + response.substr(0, 200);
        std::map<int, Behaviour> behaviours;
        for (const int other : kServicesAsked)
            behaviours[other] = {Kind::answers, "wrong"};
        behaviours[service].bytes = response;
        WebServices services(behaviours);
        EXPECT_EQ(ask(), result) << what;
        const auto last = std::find(std::begin(kServicesAsked), std::end(kServicesAsked),
                                    result == "-8" ? kServicesAsked[4] : service);
        EXPECT_EQ(services.clients(), std::vector<int>(std::begin(kServicesAsked), last + 1)) << what;
    }
}

TEST_F(PublicIP, isRequestedWithTwoHeaderLines) {
    WebServices services({{2, {Kind::doesNotListen, ""}}, {6, {Kind::answers, ""}}});
    EXPECT_EQ(ask(), "-5");
    EXPECT_EQ(services.clients(), std::vector<int>{6});
    EXPECT_EQ(services.lastRequest(), "GET / HTTP/1.1\r\nHost: v4.ident.me\r\n\r\n");
}

TEST_F(PublicIP, leavesParametersAndTheLastErrorAlone) {
    textOf("Let ( [ $$Kestrel_LastError = 7 ; $$Kestrel_LastErrorMessage = \"old\" ] ; \"\" )");
    {
        WebServices services(Behaviour{Kind::answers, "\r\n\r\n203.0.113.7"});
        EXPECT_EQ(textOf("Kestrel_GetClientPublicIPAddress ( 9 ; \"x\" )"), "203.0.113.7");
    }
    EXPECT_EQ(lastError(), "7 old");
    EXPECT_EQ(textOf("Kestrel_ValueType ( Kestrel_GetClientPublicIPAddress )"), "Number");
    EXPECT_EQ(lastError(), "-3 " + kNotAvailable);
}

TEST_F(PublicIP, isNotAvailableWhenAllServicesFailAlike) {
    EXPECT_LT(secondsOf([&] { EXPECT_EQ(ask(), "-3"); }), 2.0);
    const struct {
        Behaviour behaviour;
        std::vector<std::string> codes;
    } cases[] = {
        {{Kind::doesNotListen, ""}, {"-5"}},
        {{Kind::answers, ""}, {"-8"}},
        {{Kind::drips, kClose + "203.0.113.7"}, {"-8"}},
        {{Kind::breaksOff, ""}, {"-7"}},
        // The error depends on the timing: while sending, while receiving, or an empty answer.
        {{Kind::hangsUp, ""}, {"-6", "-7", "-8"}},
    };
    for (const auto& [behaviour, codes] : cases) {
        textOf("Let ( $$Kestrel_LastErrorMessage = \"\" ; \"\" )");
        const WebServices services(behaviour);
        const std::string code = ask();
        EXPECT_NE(std::find(codes.begin(), codes.end(), code), codes.end()) << code;
        EXPECT_TRUE(lastError().ends_with(kNotAvailable)) << code;
        EXPECT_TRUE(lastError().starts_with(code)) << lastError();
    }
}

TEST_F(PublicIP, triesElevenTimesToConnect) {
    testing::internal::CaptureStdout();
    WebServices services(Behaviour{Kind::doesNotListen, ""});
    std::array<char, kAddressBufferSize> out{"before"};
    EXPECT_EQ(GetClientPublicIP(2, out.data()), kNotConnected);
    std::fflush(stdout);
    const std::string printed = testing::internal::GetCapturedStdout();
    EXPECT_STREQ(out.data(), "");
    EXPECT_TRUE(printed.starts_with("Error while connecting: ")) << printed;
    EXPECT_EQ(std::count(printed.begin(), printed.end(), '\n'), 11) << printed;
}

TEST_F(PublicIP, isAwaitedUntilTheTimeLimit) {
    constexpr std::chrono::milliseconds time{1000};
    const std::string page = "Current IP Address: 192.0.2.9<";
    const struct {
        std::map<int, Behaviour> behaviours; // the other services refuse connections
        std::string slowName, address;
    } cases[] = {
        {{{2, {Kind::answersLate, "\r\n\r\n192.0.2.2", time / 2}}}, "", "192.0.2.2"},
        {{{2, {Kind::keepsSilent, ""}}, {9, {Kind::answers, page}}}, "", "192.0.2.9"},
        {{{9, {Kind::answersLate, page, time * 4 / 5}}}, "", "192.0.2.9"},
        // The time of a look-up does not count.
        {{{2, {Kind::answers, "\r\n\r\n192.0.2.2"}}}, "api.ipify.org", "192.0.2.2"},
        {{{9, {Kind::answers, page}}}, "api.ipify.org", "192.0.2.9"},
    };
    for (const auto& [behaviours, slowName, address] : cases) {
        const WebServices services(behaviours);
        const own_network::Slow slow(slowName, time + std::chrono::milliseconds{100});
        std::array<char, kAddressBufferSize> out{};
        EXPECT_EQ(askForPublicIP(out.data(), time), kPublicIPFound) << address;
        EXPECT_EQ(out.data(), address);
    }
}

TEST_F(PublicIP, givesUpWithinTenSecondsWithoutAResponse) {
    WebServices services(Behaviour{Kind::keepsSilent, ""});
    EXPECT_LE(secondsOf([&] { EXPECT_EQ(ask(), "-7"); }), 10.0);
    EXPECT_EQ(lastError(), "-7 " + kNotAvailable);
    EXPECT_EQ(services.clients(), (std::vector<int>{2, 6, 5, 8, 9}));
}

TEST_F(PublicIP, leaksNoDescriptorInTenThousandCalls) {
    {
        WebServices services(Behaviour{Kind::answers, "\r\n\r\n203.0.113.7"});
        EXPECT_EQ(ask(), "203.0.113.7");
    }
    const std::size_t before = openDescriptors();
    {
        WebServices services(Behaviour{Kind::answers, "\r\n\r\n203.0.113.7"});
        for (int i = 0; i < 10'000; ++i)
            ASSERT_EQ(ask(), "203.0.113.7") << i;
    }
    EXPECT_EQ(openDescriptors(), before);
    for (const Kind kind : {Kind::doesNotListen, Kind::hangsUp, Kind::breaksOff, Kind::answers}) {
        WebServices services(Behaviour{kind, "wrong"});
        for (int i = 0; i < 100; ++i)
            ASSERT_EQ(ask().substr(0, 1), "-") << i;
    }
    EXPECT_EQ(openDescriptors(), before);
}

TEST(PublicIPServices, areDocumentedInTheirOrder) {
    std::ifstream file(KESTREL_SOURCE_DIR "/docs/functions/Kestrel_GetClientPublicIPAddress.md");
    const std::string page(std::istreambuf_iterator<char>(file), {});
    int order = 0;
    for (const int service : kServicesAsked) {
        const std::string host = serviceNumbered(service).host;
        EXPECT_NE(page.find("| " + std::to_string(++order) + " | `" + host + "` |"), std::string::npos)
            << host;
    }
}

TEST(PublicIPAddress, isCollectedUpToTheFirstError) {
    const struct {
        const char *response, *out;
        int service;
        bool isAddress;
    } cases[] = {
        {"\r\n\r\n203.0.113.7", "203.0.113.7", 2, true},
        {"\r\n\r\n", "", 2, false},
        {"\r\n\r\n12345.1", "1234", 2, false},
        {"\r\n\r\n111.222.333.444.5", "111.222.333.444.", 2, false},
        {"My IP address: 1.2.3.4<br>", "1.2.3.4", 1, true},
        {"IP Information: 1.2.3.4</h1>", "1.2.3.4", 3, true},
        {"\r\n\r\nd\r\n192.0.2.1", "192.0.2.1", 4, true},
        {"<strong id=\"ip_address\">1.2.3.4</strong>", "1.2.3.4", 7, true},
        // An unknown number stands for the first service.
        {"My IP address: 1.2.3.4<br>", "1.2.3.4", 0, true},
        {"My IP address: 1.2<br>", "1.2", 10, false},
        {"My IP address: <br>", "", -1, false},
    };
    for (const auto& [response, expected, service, isAddress] : cases) {
        std::array<char, kAddressBufferSize> out{};
        out.fill('~');
        EXPECT_EQ(copyAddress(serviceNumbered(service), response, out.data()), isAddress) << response;
        EXPECT_STREQ(out.data(), expected);
    }
}

} // namespace
