#include "FunctionCalls.h"

/// Calls with fewer or more parameters than a function takes. They bypass the host, which would refuse some.

namespace {

TEST_F(FunctionCalls, thatLackParametersAreReported) {
    const struct {
        const char16_t* function;
        std::vector<std::size_t> counts;
        const char* error;
    } cases[] = {
        {u"Kestrel_Encode", {0, 1}, "-50 Not enough parameters"},
        {u"Kestrel_Encode", {3, 4}, "-50 Too many parameters"},
        {u"Kestrel_Decode", {0, 1}, "-50 Not enough parameters"},
        {u"Kestrel_Decode", {3, 4}, "-50 Too many parameters"},
        {u"Kestrel_DoFileMakerScript", {0}, "-50 Not enough parameters"},
        {u"Kestrel_GetAsHTML", {0}, "-50 Input parameter is missing"},
        {u"Kestrel_GetIPforName", {0}, "-50 Host name is not specified"},
        {u"Kestrel_GetNameForIP", {0}, "-50 IP address is not specified"},
        {u"Kestrel_MergeText", {0}, "-50 Not enough parameters"},
        {u"Kestrel_RegExp_PatternCount", {0, 1}, "-50 At least two parameters needed"},
        {u"Kestrel_RegExp_Substitute", {0, 1, 2}, "-50 At least three parameters needed"},
    };
    for (const auto& [function, counts, error] : cases)
        for (const std::size_t count : counts) {
            textOf("Let ( [ $$Kestrel_LastError = 7 ; $$Kestrel_LastErrorMessage = \"kept\" ] ; \"\" )");
            const Answer answer = call(function, std::vector(count, host::Data(u"UTF-8 to Base64")));
            EXPECT_EQ(answer.error, 0);
            EXPECT_EQ(answer.value.nativeType(), host::DataType::number);
            EXPECT_EQ(answer.value.asNumber(), host::Decimal(-50));
            EXPECT_EQ(lastError(), error) << host::toUtf8(function) << count;
        }
}

} // namespace
