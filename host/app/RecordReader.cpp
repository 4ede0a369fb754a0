#include "host/app/RecordReader.h"

#include "host/app/DescriptionReader.h"
#include "host/calc/Environment.h"
#include "host/calc/Fields.h"
#include "host/data/Records.h"
#include "host/html/Reader.h"
#include "host/values/Encoding.h"

#include <algorithm>

namespace host {

namespace {

namespace fs = std::filesystem;

std::vector<std::string> partsOf(const std::string& text, char delimiter) {
    std::vector<std::string> parts;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find(delimiter, start), text.size());
        parts.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return parts;
}

std::string unescaped(const std::string& text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char next = text[i] == '\\' && i + 1 < text.size() ? text[i + 1] : '\0';
        const bool isEscape = next == 'r' || next == 't' || next == '\\';
        if (isEscape) ++i;
        result += !isEscape ? text[i] : next == 'r' ? '\r' : next == 't' ? '\t' : '\\';
    }
    return result;
}

DataRef contentOf(const fs::path& file) {
    const std::string bytes = contentOfFile(file);
    Binary container;
    container.setFileName(Text::fromUtf8(file.filename().string()));
    container.add(kFileStream, {reinterpret_cast<const std::byte*>(bytes.data()), bytes.size()});
    return std::make_shared<const Data>(std::move(container));
}

class RecordReader {
public:
    RecordReader(const fs::path& file, std::size_t table, const std::set<std::size_t>& rich,
                 Solution& solution)
        : file_(file), table_(table), rich_(rich), solution_(solution) {}

    void read() {
        std::string content = contentOfFile(file_);
        std::erase(content, '\r'); // of lines that end in two characters
        std::vector<std::string> lines = partsOf(content, '\n');
        if (lines.back().empty()) lines.pop_back();
        if (lines.empty()) failAt(file_.string(), 1, "a header with names of fields is missing");
        SolutionRecords records{.table = table_, .columns = {}, .rows = {}};
        line_ = 1;
        for (const std::string& name : partsOf(lines.front(), '\t'))
            records.columns.push_back(column(name, records.columns));
        for (std::size_t i = 1; i < lines.size(); ++i) {
            line_ = i + 1;
            records.rows.push_back(row(lines[i], records.columns));
        }
        solution_.records.push_back(std::move(records));
    }

private:
    using Column = std::pair<std::size_t, int>;

    [[noreturn]] void fail(const std::string& what) const { failAt(file_.string(), line_, what); }
    [[nodiscard]] const std::vector<Field>& fields() const { return solution_.tables.tables[table_].fields; }

    Column column(const std::string& written, const std::vector<Column>& before) const {
        const calc::FieldName name = calc::fieldNameIn(fromUtf8(written));
        const std::u16string folded = calc::foldName(name.field);
        const auto field = std::find_if(fields().begin(), fields().end(), [&](const Field& known) {
            return calc::foldName(known.name) == folded;
        });
        if (field == fields().end()) fail("the table has no field \"" + written + "\"");
        if (field->kind != FieldKind::normal) fail("\"" + written + "\" is not a field that records hold");
        const int repetition = name.repetition.value_or(1);
        if (repetition < 1 || repetition > field->repetitions)
            fail("\"" + written + "\": the field has no such repetition");
        const Column column{static_cast<std::size_t>(field - fields().begin()), repetition};
        if (std::find(before.begin(), before.end(), column) != before.end())
            fail("\"" + written + "\" stands twice in the header");
        return column;
    }

    DataVect row(const std::string& line, const std::vector<Column>& columns) {
        const std::vector<std::string> cells = partsOf(line, '\t');
        if (cells.size() != columns.size())
            fail(std::to_string(cells.size()) + " values instead of " + std::to_string(columns.size()));
        DataVect values;
        for (std::size_t i = 0; i < cells.size(); ++i)
            values.push_back(value(unescaped(cells[i]), columns[i].first));
        return values;
    }

    DataRef value(const std::string& written, std::size_t place) {
        const Field& field = fields()[place];
        if (rich_.contains(place) && !written.empty())
            return std::make_shared<const Data>(
                readHtml(written, [this](std::u16string_view name) { return fontId(name); }));
        if (field.type == DataType::binary && !written.empty()) {
            if (fs::path(written).filename() != written) fail("a container's file stands beside the records");
            return contentOf(file_.parent_path() / written);
        }
        DataRef value = valueFrom(written, field.type);
        if (!value)
            fail("\"" + written + "\" in " + toUtf8(field.name) + " is no " +
                 std::string(typeWord(field.type)));
        return value;
    }

    /// Fonts of a file are numbered in their order.
    std::uint16_t fontId(std::u16string_view name) {
        constexpr std::size_t mostFonts = 65'000;
        std::vector<std::u16string>& fonts = solution_.fonts;
        const auto known = std::find_if(fonts.begin(), fonts.end(), [&](const std::u16string& font) {
            return calc::foldName(font) == calc::foldName(name);
        });
        const auto place = static_cast<std::size_t>(known - fonts.begin());
        if (known != fonts.end()) return static_cast<std::uint16_t>(place);
        if (name.empty() || fonts.size() >= mostFonts) return invalidFont;
        fonts.emplace_back(name);
        return static_cast<std::uint16_t>(place);
    }

    fs::path file_;
    std::size_t table_;
    const std::set<std::size_t>& rich_;
    Solution& solution_;
    std::size_t line_ = 1;
};

} // namespace

DataRef valueFrom(const std::string& written, DataType type) {
    Data value{Text(fromUtf8(written))};
    if (written.empty())
        value.clear(type);
    else if (type == DataType::number ? !value.number() : !value.convert(type))
        return nullptr;
    return fitted(std::make_shared<const Data>(std::move(value)), type);
}

void readRecords(const fs::path& file, std::size_t table, const std::set<std::size_t>& rich,
                 Solution& solution) {
    RecordReader(file, table, rich, solution).read();
}

} // namespace host
