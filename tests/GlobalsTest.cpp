#include "FunctionCalls.h"
#include "globals/Dictionary.h"

#include "bridge/cFMUtils.h"

#include <sstream>

/// Values that outlive a calculation: the store itself, and the two functions of the loaded library.

namespace {

using host::Data;
using host::DataType;

Data withText(const char16_t* text, DataType type) {
    Data value;
    value.setText(host::Text(text), type);
    return value;
}

host::Decimal numberFrom(const std::u16string& digits) {
    return host::Decimal::parse(digits).value_or(host::Decimal());
}

/// A value of each type, with details that are easily lost.
std::vector<Data> allKinds() {
    host::Text loud(u"plain and bold \U0001F600\r\t");
    loud.applyStyle(host::CharacterStyle(1, host::face::bold, 12), 6, 3);
    const std::byte bytes[] = {std::byte{0}, std::byte{255}, std::byte{13}};
    host::Binary picture;
    picture.setFileName(u"p.png");
    picture.add({{'M', 'A', 'I', 'N'}}, bytes);
    picture.add({{'F', 'I', 'L', 'E'}}, {});
    std::vector<Data> values{
        Data(loud),
        Data(host::Text(std::u16string(u"a\0b", 3))),
        Data(host::Text(std::u16string{0xD800, u'x', 0xDC00})), // single surrogates
        Data(host::Decimal(-7)),
        Data(numberFrom(u"-0." + std::u16string(399, u'3') + u"1")),
        Data(numberFrom(std::u16string(400, u'9'))),
        withText(u"", DataType::number),
        withText(u"abc12", DataType::number),
        withText(u"movie:clip.mov", DataType::binary),
        Data(picture),
        Data({.days = 738'000, .micros = 0}, DataType::date),
        Data({.days = 0, .micros = 1'500'000}, DataType::time),
        Data({.days = 738'000, .micros = 1}, DataType::timestamp),
    };
    Data truth;
    truth.setNumber(host::Decimal(1), DataType::boolean);
    values.push_back(truth);
    for (Data& value : values)
        value.setLocale({fmx::Locale::kType_ENG});
    values.push_back(Data::invalid());
    values.emplace_back().setText(host::Text(u"?"), DataType::invalid);
    return values;
}

class Globals : public FunctionCalls {
protected:
    static std::string describe(const Data& value) {
        return std::string(host::typeWord(value.nativeType())) + " " + value.asText().utf8().substr(0, 40);
    }
};

TEST_F(Globals, keepValuesOfEveryTypeUnchanged) {
    for (const Data& value : allKinds()) {
        const Answer stored = call(u"Kestrel_SetGlobal", {Data(u"k"), value});
        EXPECT_EQ(stored.error, 0);
        EXPECT_TRUE(stored.value.isIdenticalTo(value)) << describe(value);
        Answer loaded = call(u"Kestrel_GetGlobal", {Data(u"k")});
        EXPECT_TRUE(loaded.value.isIdenticalTo(value)) << describe(value);
        // The loaded value is a copy, which the caller may change.
        loaded.value.setText(host::Text(u"changed"));
        EXPECT_TRUE(call(u"Kestrel_GetGlobal", {Data(u"k")}).value.isIdenticalTo(value)) << describe(value);
        EXPECT_EQ(liveData(), 1);
    }
}

TEST_F(Globals, areSharedByAllFiles) {
    EXPECT_EQ(textOf("Kestrel_SetGlobal ( \"k\" ; 5 ; \"dieonclose\" )"), "5");
    session.open(solutionNamed(u"Other"));
    session.close(file);
    EXPECT_EQ(textOf("Get ( FileName ) & Kestrel_GetGlobal ( \"k\" )"), "Other5");
}

TEST_F(Globals, areStoredAndReadByTheMillion) {
#if __has_feature(address_sanitizer)
    constexpr int million = 50'000; // the sanitizers make every call slower
#else
    constexpr int million = 1'000'000;
#endif
    for (int i = 0; i < million; ++i)
        call(u"Kestrel_SetGlobal", {Data(host::Decimal(i)), Data(host::Decimal(-i))});
    EXPECT_EQ(liveData(), million);
    for (int i = 0; i < million; ++i)
        ASSERT_EQ(call(u"Kestrel_GetGlobal", {Data(host::Decimal(i))}).value.asNumber(), host::Decimal(-i));
    clearGlobals();
    EXPECT_EQ(liveData(), 0);
}

TEST_F(Globals, stayUnchangedWhenTheHostFails) {
    const std::vector<Data> kinds = allKinds();
    const std::vector<std::vector<Data>> calls{
        {Data(u"k"), kinds.front()}, {Data(u"k"), kinds.front(), Data(u"dieonclose")},
        {Data(u"k"), kinds[9]},      {Data(u"new"), kinds[5], Data(u"dieonclose")},
        {Data(u"k"), Data(u"")},     {Data(u""), Data(u"")},
    };
    const Data old(u"old");
    for (const std::vector<Data>& arguments : calls)
        host::forEachFault([&](host::FaultPoint& point) {
            clearGlobals();
            call(u"Kestrel_SetGlobal", {Data(u"k"), old});
            point.during([&] { call(u"Kestrel_SetGlobal", arguments); });
            if (!point.fired) return;
            EXPECT_TRUE(call(u"Kestrel_GetGlobal", {Data(u"k")}).value.isIdenticalTo(old)) << point.nth;
            EXPECT_EQ(textOf("Kestrel_GetGlobal ( \"new\" )"), "") << point.nth;
            EXPECT_EQ(liveData(), 1) << point.nth;
        });
}

TEST_F(Globals, outliveShutdown) {
    textOf("Kestrel_SetGlobal ( \"k\" ; 5 )");
    plugIn.shutdown();
    EXPECT_EQ(liveData(), 1);
    ASSERT_EQ(plugIn.init(), 60);
    EXPECT_EQ(textOf("Kestrel_GetGlobal ( \"k\" )"), "5");
}

class Store : public testing::Test {
protected:
    ~Store() override {
        store.clean();
        EXPECT_EQ((host::objectCounts() - before).describe(), "");
    }

    void bind(const char16_t* file, const char* key, const Data& value = Data(u"v")) {
        const host::calc::Environment place = session.environment(session.find(file));
        store.storeLocalValueForKey(host::bridge::out<fmx::ExprEnv>(place), text(key), asData(value));
    }
    void clean(const char16_t* file) {
        const host::calc::Environment place = session.environment(session.find(file));
        store.cleanLocalKeys(host::bridge::out<fmx::ExprEnv>(place));
    }
    static const fmx::Data& asData(const Data& value) { return host::bridge::out<fmx::Data>(value); }
    const fmx::Text& text(const char* utf8) {
        key = host::fromUtf8(utf8);
        return host::bridge::out<fmx::Text>(std::as_const(key));
    }
    /// The keys that have a value, and the bound keys with their files.
    std::string contents() const {
        using kst::operator<<;
        std::ostringstream stream;
        for (const auto& [name, value] : store.values)
            stream << name << ' ';
        stream << '|';
        for (const auto& [name, file] : store.localKeys)
            stream << ' ' << name << '=' << file;
        return stream.str();
    }

    host::ObjectCounts before = host::objectCounts();
    host::Session session;
    kst::Dictionary store;
    host::Text key;
};

TEST_F(Store, bindsKeysToTheFirstFileAndForgetsBindings) {
    session.open(solutionNamed(u"Sales"));
    session.open(solutionNamed(u"Other"));
    bind(u"Sales", "b");
    bind(u"Other", "B");
    bind(u"Other", "b", Data(u"other's"));
    EXPECT_EQ(contents(), "B b | B=Other b=Sales");
    const std::shared_ptr<kst::Value> value = store.values[u"b"];
    EXPECT_EQ(cFMUtils::StringFromFmxText(value->data().GetAsText()), "other's");

    store.storeValueForKey(text("b"), asData(Data(host::Decimal(2))));
    EXPECT_EQ(contents(), "B b | B=Other");
    EXPECT_EQ(store.values[u"b"], value);
    EXPECT_EQ(value->data().GetAsNumber().AsLong(), 2);
    store.storeValueForKey(text("b"), value->data());
    EXPECT_EQ(value->data().GetAsNumber().AsLong(), 2) << "stored from itself";

    store.removeKeyValue(text("B"));
    store.removeKeyValue(text("absent"));
    EXPECT_EQ(contents(), "b |");
    Data untouched(u"as it was");
    store.loadValueForKey(text("B"), host::bridge::out<fmx::Data>(untouched));
    EXPECT_TRUE(untouched.isIdenticalTo(Data(u"as it was")));

    // The file of this calculation has closed, so its name is not found. The value is kept without a binding.
    const host::calc::Environment place = session.environment(session.find(u"Sales"));
    session.close(session.front()->id());
    store.storeLocalValueForKey(host::bridge::out<fmx::ExprEnv>(place), text("c"), asData(Data(u"v")));
    store.cleanLocalKeys(host::bridge::out<fmx::ExprEnv>(place));
    EXPECT_EQ(contents(), "b c |");
    store.clean();
    store.clean();
    EXPECT_EQ(contents(), "|");
}

TEST_F(Store, removesKeysOfClosedFiles) {
    const std::uint64_t sales = session.open(solutionNamed(u"Sales"));
    const std::uint64_t archive = session.open(solutionNamed(u"Sales Archive"));
    session.open(solutionNamed(u"Old Sales"));
    for (const char* key : {"a", "d"})
        bind(u"Sales", key);
    bind(u"Sales Archive", "b");
    bind(u"Old Sales", "c");
    store.storeValueForKey(text("plain"), asData(Data(u"v")));
    const std::string all = "a b c d plain | a=Sales b=Sales Archive c=Old Sales d=Sales";

    // Names are compared exactly: SALES is another file than Sales.
    clean(u"Old Sales");
    EXPECT_EQ(contents(), all);
    host::faults().arm(1, host::Faults::Kind::unknown, true);
    EXPECT_THROW(clean(u"Old Sales"), std::exception);
    host::faults().disarm();
    EXPECT_EQ(contents(), all);

    session.close(sales);
    session.open(solutionNamed(u"SALES"));
    clean(u"Old Sales");
    EXPECT_EQ(contents(), "b c plain | b=Sales Archive c=Old Sales");
    session.close(archive);
    clean(u"Old Sales");
    EXPECT_EQ(contents(), "c plain | c=Old Sales");
}

TEST(KeysInTheLog, areUtf8) {
    using kst::operator<<;
    std::ostringstream stream;
    stream << kst::u16string(u"\u007F\u0080\u07FF\u0800\uFFFF\U00010000\U0010FFFF") << '|'
           << kst::u16string{0xD800, 0xD83D, 0xDE00, u'x', 0xDC00, 0xD800};
    EXPECT_EQ(stream.str(),
              "\u007F\u0080\u07FF\u0800\uFFFF\U00010000\U0010FFFF|\uFFFD\U0001F600x\uFFFD\uFFFD");
}

TEST(TheCleaningTimer, requestsANewCheck) {
    kst::gStatusChecked = true;
    kst::TimerCallback(nullptr, nullptr);
    EXPECT_FALSE(kst::gStatusChecked);
}

} // namespace
