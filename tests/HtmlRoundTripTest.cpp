#include "StyledTexts.h"
#include "host/html/Reader.h"

/// The plug-in converts styled text to HTML, and the host's independent reader converts it back.

namespace {

using host::Text;

class HtmlRoundTrip : public LoadedPlugIn {
protected:
    Text read(const Text& html) {
        const std::shared_ptr<host::File> front = session.front();
        return host::readHtml(html.utf8(), [&](std::u16string_view name) { return front->fontId(name); });
    }
};

TEST_F(HtmlRoundTrip, keepsTextAndFormatting) {
    const unsigned first = numberFromEnvironment("KESTREL_SEED", 1);
    const unsigned count = numberFromEnvironment("KESTREL_ROUND_TRIPS", 1000);
    for (unsigned seed = first; seed < first + count; ++seed) {
        const HtmlParameters& parameters = htmlParameters()[seed % htmlParameters().size()];
        const bool inVariable = seed / htmlParameters().size() % 2 == 1, hasLineBreaks = seed % 5 != 0;
        StyledTexts texts(seed, *session.front());
        const Text text = texts.next(hasLineBreaks);
        const Text html = htmlOf(session, text, parameters, inVariable);
        const std::string found = differenceInHtml(text, read(html), parameters, inVariable);
        ASSERT_EQ(found, "") << html.utf8() << "\nKESTREL_SEED=" << seed
                             << " KESTREL_ROUND_TRIPS=1 repeats it";
    }
}

} // namespace
