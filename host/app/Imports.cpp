#include "host/app/Imports.h"

#include <cstring>
#include <elf.h>
#include <fstream>
#include <iterator>
#include <optional>
#include <span>
#include <string_view>

namespace host {

namespace {

using Bytes = std::span<const char>;

/// The `index`-th record of a table in a file; nothing where it lies outside.
template<class Record>
std::optional<Record> recordAt(Bytes file, std::uint64_t offset, std::uint64_t index) {
    if (offset > file.size() || index >= (file.size() - offset) / sizeof(Record)) return std::nullopt;
    Record record;
    std::memcpy(&record, file.data() + offset + index * sizeof(Record), sizeof(Record));
    return record;
}

/// The zero-terminated text in a table of texts; empty where it lies outside.
std::string_view textAt(Bytes file, const Elf64_Shdr& table, std::uint64_t place) {
    if (table.sh_offset > file.size() || table.sh_size > file.size() - table.sh_offset ||
        place >= table.sh_size)
        return {};
    const std::string_view rest(file.data() + table.sh_offset + place, table.sh_size - place);
    return rest.substr(0, rest.find('\0'));
}

std::string contentOf(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace

std::vector<std::string> importsOf(const std::filesystem::path& library, std::string_view prefix) {
    const std::string content = contentOf(library);
    const Bytes file(content);
    const auto header = recordAt<Elf64_Ehdr>(file, 0, 0);
    if (!header || std::memcmp(header->e_ident, ELFMAG, SELFMAG) != 0 ||
        header->e_ident[EI_CLASS] != ELFCLASS64)
        return {};
    std::vector<std::string> names;
    for (unsigned i = 0; i < header->e_shnum; ++i) {
        const auto section = recordAt<Elf64_Shdr>(file, header->e_shoff, i);
        if (!section || section->sh_type != SHT_DYNSYM) continue;
        const auto texts = recordAt<Elf64_Shdr>(file, header->e_shoff, section->sh_link);
        for (std::uint64_t row = 0; texts && row < section->sh_size / sizeof(Elf64_Sym); ++row) {
            const auto symbol = recordAt<Elf64_Sym>(file, section->sh_offset, row);
            if (!symbol) break;
            const bool isNeeded =
                symbol->st_shndx == SHN_UNDEF && ELF64_ST_BIND(symbol->st_info) == STB_GLOBAL;
            const std::string_view name = textAt(file, *texts, symbol->st_name);
            if (isNeeded && name.starts_with(prefix)) names.emplace_back(name);
        }
    }
    return names;
}

} // namespace host
