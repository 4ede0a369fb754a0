#pragma once

#include "host/app/Solution.h"
#include "host/calc/Engine.h"
#include "host/calc/Environment.h"
#include "host/scripts/Stage.h"

#include <map>
#include <memory>
#include <vector>

namespace host {

class Session;
class Database;
class FileFields;
class Records;

/// An open file. Session opens and closes files.
class File final : public scripts::StageFile, public std::enable_shared_from_this<File> {
public:
    /// Throws std::runtime_error when the tables cannot be made, or a custom function has a name that is
    /// taken.
    File(Session& session, std::uint64_t id, Solution solution);
    ~File() override;

    [[nodiscard]] std::uint64_t id() const override { return id_; }
    [[nodiscard]] const std::u16string& name() const override { return solution_.name; }
    [[nodiscard]] const Solution& solution() const { return solution_; }
    [[nodiscard]] const Script* script(std::u16string_view name) const override;
    [[nodiscard]] const Schema* schema() const override;
    [[nodiscard]] Records& records() { return *records_; }
    [[nodiscard]] Position& position() override { return *position_; }
    /// Ends evaluation and SQL in the file; the session is no longer used.
    void markClosed();

    [[nodiscard]] bool isOpen() const override { return open_; }
    calc::Variables& fileVariables() override { return variables_; }
    [[nodiscard]] const calc::FunctionRows& customFunctions() const override { return functions_; }
    [[nodiscard]] const Formats& formats() const override { return *formats_; }
    calc::FieldContext& fields() override;
    [[nodiscard]] bool knowsGet(std::u16string_view name) const override;
    DataRef get(std::u16string_view name, const calc::Environment& environment) override;
    std::int64_t localMicros() override;
    std::optional<std::u16string> design(std::u16string_view function,
                                         std::span<const DataRef> arguments) override;
    calc::SqlAnswer executeSql(std::u16string_view statement, std::u16string_view fileName,
                               const DataVect& parameters) override;
    calc::SqlAnswer selectSql(std::u16string_view statement, const DataVect& parameters) override;
    std::uint16_t fontId(std::u16string_view name) override;
    std::optional<std::u16string> fontName(std::uint16_t id) override;

private:
    [[nodiscard]] calc::Result evaluateFor(const calc::Expression& expression,
                                           const calc::RecordScope& scope);
    void loadRecords();
    void checkCalculations();

    Session* session_; ///< null once closed
    std::uint64_t id_;
    Solution solution_;
    bool open_ = true;
    calc::Variables variables_;
    calc::FunctionRows functions_;
    const Formats* formats_;
    std::vector<std::u16string> fonts_;
    std::map<std::u16string, std::uint16_t, std::less<>> fontIds_; ///< by exact name
    std::unique_ptr<Database> database_;
    std::unique_ptr<Records> records_;
    std::unique_ptr<Position> position_;
    std::unique_ptr<FileFields> fields_;
};

} // namespace host
