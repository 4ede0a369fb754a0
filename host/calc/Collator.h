#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

struct UCollator;

namespace host::calc {

/// The order of texts in a language, by ICU's collation.
class Collator {
public:
    /// The differences that count.
    enum class Counting { letters, lettersAndAccents };

    /// Names are the calculation language's ("English", "Spanish_Traditional"), in upper or lower case; ""
    /// is the file's language. std::nullopt for an unknown name.
    static std::optional<Collator> of(std::u16string_view language, Counting counting);

    /// Bytes that compare as the texts do; equal bytes mean texts without a difference that counts.
    [[nodiscard]] std::string key(std::u16string_view text) const;

private:
    struct Close {
        void operator()(UCollator* collator) const;
    };
    std::unique_ptr<UCollator, Close> collator_; ///< null: texts compare code by code
};

} // namespace host::calc
