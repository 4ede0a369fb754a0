#include "host/sql/Rows.h"

#include "host/sql/Values.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>

namespace host {

namespace {

constexpr std::size_t kMostValues = 1'000'000, kMostBytes = std::size_t{256} << 20U;

/// Makes the values of a result in blocks, which takes less time than many small allocations. A block lives
/// as long as one of its values.
class ValueBlocks {
public:
    DataRef keep(Data value) {
        if (!block_ || block_->size() == block_->capacity()) {
            // The first block is small, because a field is read alone.
            const std::size_t size = block_ ? std::min(2 * block_->size(), kLargest) : 1;
            block_ = std::make_shared<std::vector<Data>>();
            block_->reserve(size);
        }
        return {block_, &block_->emplace_back(std::move(value))};
    }

private:
    static constexpr std::size_t kLargest = 64;

    std::shared_ptr<std::vector<Data>> block_;
};

} // namespace

bool bindAll(sqlite3_stmt* statement, const DataVect& parameters) {
    const int wanted = sqlite3_bind_parameter_count(statement);
    if (static_cast<std::size_t>(wanted) > parameters.size()) return false;
    for (int place = 1; place <= wanted; ++place) {
        const DataRef& value = parameters[static_cast<std::size_t>(place) - 1];
        if (!value || bindValue(statement, place, *value) != SQLITE_OK) return false;
    }
    return true;
}

std::vector<DataType> declaredTypes(sqlite3_stmt* statement) {
    std::vector<DataType> types(static_cast<std::size_t>(sqlite3_column_count(statement)));
    for (std::size_t column = 0; column < types.size(); ++column)
        types[column] = declaredType(sqlite3_column_decltype(statement, static_cast<int>(column)));
    return types;
}

int collectRows(sqlite3_stmt* statement, const std::vector<DataType>& types, ValueForm form, RowVect& rows) {
    ValueBlocks blocks;
    std::size_t values = 0, bytes = 0;
    int code = SQLITE_OK;
    while ((code = sqlite3_step(statement)) == SQLITE_ROW) {
        DataVect& row = rows.emplace_back();
        row.reserve(types.size());
        for (std::size_t column = 0; column < types.size(); ++column)
            row.push_back(
                blocks.keep(columnValue(statement, static_cast<int>(column), types[column], form, bytes)));
        values += types.size();
        if (values > kMostValues || bytes > kMostBytes) return SQLITE_TOOBIG;
    }
    return code;
}

} // namespace host
