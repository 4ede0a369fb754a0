#pragma once

#include "host/calc/Fields.h"
#include "host/data/Position.h"
#include "host/data/Records.h"

namespace host {

/// The fields of a file, as calculations at a session's position see them.
class FileFields final : public calc::FieldContext {
public:
    FileFields(Records& records, Position& position) : records_(records), position_(position) {}

    [[nodiscard]] std::uint64_t names(Scope scope) const override;
    [[nodiscard]] Found find(Scope scope, std::u16string_view occurrence,
                             std::u16string_view field) const override;
    void eachName(const std::function<void(std::u16string_view)>& visit) const override;
    [[nodiscard]] std::u16string nameOf(calc::FieldPlace place) const override;
    [[nodiscard]] std::u16string tableNameOf(calc::FieldPlace place) const override;
    [[nodiscard]] int repetitions(calc::FieldPlace place) const override;
    int takeFailure() override { return records_.takeFailure(); }
    DataRef value(Scope scope, calc::FieldPlace place, int repetition) override;
    DataVect values(Scope scope, calc::FieldPlace place, int repetition) override;
    DataRef nthValue(Scope scope, calc::FieldPlace place, int repetition, std::int64_t n) override;
    DataRef lookup(Scope scope, calc::FieldPlace place, int repetition) override;
    DataRef lookupNext(Scope scope, calc::FieldPlace place, int repetition, bool isHigher) override;
    DataRef summary(Scope scope, calc::FieldPlace summaryField, calc::FieldPlace breakField) override;

private:
    [[nodiscard]] std::optional<std::size_t> occurrenceOf(Scope scope) const;
    [[nodiscard]] std::int64_t recordOf(Scope scope);
    [[nodiscard]] bool isLocal(Scope scope, calc::FieldPlace place) const;
    [[nodiscard]] std::size_t tableOf(calc::FieldPlace place) const;
    std::optional<std::vector<std::int64_t>> related(Scope scope, calc::FieldPlace place);
    DataRef valueIn(calc::FieldPlace place, std::int64_t record, int repetition);
    /// The value in one of the records; that of a summary field is of all of them.
    DataRef valueAmong(const std::vector<std::int64_t>& records, std::int64_t record, calc::FieldPlace place,
                       int repetition);

    Records& records_;
    Position& position_;
};

} // namespace host
