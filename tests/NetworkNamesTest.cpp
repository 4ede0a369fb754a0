#include "FunctionCalls.h"
#include "WebServices.h"

#include <chrono>

/// Names and addresses of hosts, which the loaded plug-in looks up in the tests' own list.

namespace {

using host::Data;

class NetworkNames : public FunctionCalls {
protected:
    std::string lookUp(std::u16string_view function, const std::u16string& parameter) {
        const Answer answer = call(function, {Data(parameter), Data(u"ignored")});
        EXPECT_EQ(answer.error, 0);
        EXPECT_EQ(answer.value.nativeType(), host::DataType::text);
        return answer.value.asText().utf8();
    }
};

const std::string kNoAddress = "Cannot retrieve IP for host";
const std::string kNotAnAddress = "Invalid IP address";

TEST_F(NetworkNames, giveAddresses) {
    const struct {
        std::u16string name;
        std::string address;
    } cases[] = {
        {u"localhost", "127.0.0.1"},
        {u"twice.example", "127.0.0.21"}, // the first of two
        {u"api.ipify.org", "127.0.0.2"},
        {std::u16string(255, u'n'), "127.0.0.24"},
        {u"six.example", kNoAddress},
        {u"nobody.example", kNoAddress},
        {u"", kNoAddress},
        {u"local host", kNoAddress},
        {u"localhost\r", kNoAddress},
        {u"h\u00f6st \U0001F600 \u0437", kNoAddress},
        // Bytes after the first 1,023 are not read.
        {std::u16string(100'000, u'x'), kNoAddress},
        {std::u16string(u"localhost") + std::u16string(1, u'\0') + u"x", "127.0.0.1"},
    };
    for (const auto& [name, address] : cases)
        EXPECT_EQ(lookUp(u"Kestrel_GetIPforName", name), address) << host::toUtf8(name).substr(0, 40);
}

TEST_F(NetworkNames, areFoundByAddress) {
    const struct {
        std::u16string address;
        std::string name;
    } cases[] = {
        {u"127.0.0.1", "localhost"},
        {u"127.1", "localhost"},
        {u"2130706433", "localhost"},
        {u"0x7f.0.0.1", "localhost"},
        {u"127.0.0.23", "quo\"'ted\\"},
        {u"127.0.0.24", std::string(255, 'n')},
        {u"10.1", "10.0.0.1"}, // an address without a name
        // Only the first 1,023 bytes are read.
        {u"127.0.0." + std::u16string(1014, u'0') + u"1", "localhost"},
        {u"127.0.0." + std::u16string(1015, u'0') + u"1", "127.0.0.0"},
        {u"203.0.113.7", "203.0.113.7"},
        {u"300.1.1.1", kNotAnAddress},
        {u"255.255.255.255", kNotAnAddress},
        {u"::1", kNotAnAddress},
        {u"", kNotAnAddress},
        {u"1.2.3.4.5", kNotAnAddress},
        {u"localhost", kNotAnAddress},
        {u"\u0661.2.3.4", kNotAnAddress}, // a digit of another script
        {std::u16string(2000, u'1'), kNotAnAddress},
    };
    for (const auto& [address, name] : cases)
        EXPECT_EQ(lookUp(u"Kestrel_GetNameForIP", address), name) << host::toUtf8(address).substr(0, 40);
}

TEST_F(NetworkNames, leaveTheLastErrorAloneWhenTheyAreNotFound) {
    textOf("Let ( [ $$Kestrel_LastError = 7 ; $$Kestrel_LastErrorMessage = \"old\" ] ; \"\" )");
    EXPECT_EQ(textOf("Kestrel_GetIPforName ( \"nobody.example\" )"), kNoAddress);
    EXPECT_EQ(textOf("Kestrel_GetNameForIP ( \"::1\" )"), kNotAnAddress);
    EXPECT_EQ(lastError(), "7 old");
}

TEST_F(NetworkNames, leakNoDescriptors) {
    textOf("Kestrel_GetIPforName ( \"localhost\" ) & Kestrel_GetNameForIP ( \"127.0.0.1\" )");
    const std::size_t before = openDescriptors();
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(textOf("Kestrel_GetIPforName ( Kestrel_GetNameForIP ( \"127.0.0.1\" ) )"), "127.0.0.1");
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(NetworkNames, waitForTheResolverWithoutATimeout) {
    {
        const own_network::Slow slow("twice.example", std::chrono::seconds{10});
        EXPECT_EQ(lookUp(u"Kestrel_GetIPforName", u"twice.example"), "127.0.0.21");
    }
    EXPECT_EQ(lookUp(u"Kestrel_GetIPforName", u"localhost"), "127.0.0.1");
}

} // namespace
