#include "host/calc/Environment.h"
#include "host/data/Position.h"
#include "host/scripts/StepRun.h"
#include "host/scripts/Steps.h"

#include <optional>
#include <utility>
#include <vector>

namespace host::scripts {

namespace {

/// A step that is one operation of the position.
template<int (Position::*operation)()>
void perform(StepRun& run) {
    check((run.position().*operation)());
}

void goToLayout(StepRun& run) {
    Position& position = run.position();
    if (run.has(u"original layout")) {
        const std::optional<std::size_t> original = run.frame().originalLayout;
        return check(original ? position.goToLayout(*original) : calc::error::missingLayout);
    }
    if (run.has(u"Layout Number")) {
        const std::int64_t number = run.value(u"Layout Number")->asNumber().toInt64();
        return check(number < 1 ? calc::error::missingLayout
                                : position.goToLayout(static_cast<std::size_t>(number) - 1));
    }
    const std::u16string name = run.has(u"layout")
                                    ? run.quotedName(u"layout").name
                                    : std::u16string(run.value(u"Layout Name")->asText().units());
    check(position.goToLayout(name));
}

struct Direction {
    std::u16string_view word;
    Position::Step step;
};
constexpr std::array kDirections{
    Direction{u"first", Position::Step::first},
    Direction{u"last", Position::Step::last},
    Direction{u"previous", Position::Step::previous},
    Direction{u"next", Position::Step::next},
};

void goToRecord(StepRun& run) {
    int error = calc::error::missingRecord;
    if (run.has(u"number")) error = run.position().goToRecord(run.value(u"number")->asNumber().toInt64());
    for (const Direction& direction : kDirections)
        if (run.says(u"direction", direction.word)) error = run.position().goToRecord(direction.step);
    const bool leaves = error == calc::error::missingRecord && run.says(u"Exit after last", u"on");
    if (!leaves || !run.leaveLoop()) check(error);
}

constexpr OptionRow kRestore{.name = u"Restore", .takes = Takes::words, .words = u"restore"};
constexpr OptionRow kUnchecked{
    .name = u"validation", .takes = Takes::words, .words = u"skip data entry validation"};
/// The option has no effect, as nobody else has the file open.
constexpr OptionRow kOverride{
    .name = u"locks", .takes = Takes::words, .words = u"override ess locking conflicts"};

/// Requests that the app keeps with a step are not in its text.
void refuseKept(const StepRun& run) {
    if (run.has(u"Restore")) throw calc::Error{calc::error::unavailable};
}

template<int (Position::*operation)()>
void find(StepRun& run) {
    refuseKept(run);
    perform<operation>(run);
}

void sortRecords(StepRun& run) {
    std::vector<SortKey> keys;
    for (const Option& option : run.step().options)
        if (option.row->takes == Takes::field)
            keys.push_back({.place = run.field(targetOf(option.text))});
        else if (option.row->name == u"order" && !keys.empty())
            keys.back().isDescending = calc::foldName(option.text) == u"descending";
    if (keys.empty()) throw calc::Error{calc::error::unavailable};
    check(run.position().sort(std::move(keys)));
}

void commitRecords(StepRun& run) {
    Position& position = run.position();
    check(run.has(kUnchecked.name) ? position.commitUnchecked() : position.commit());
}

void omitMultipleRecords(StepRun& run) {
    check(run.position().omitRecords(run.value(u"count")->asNumber().toInt64()));
}

void truncateTable(StepRun& run) {
    std::u16string name = run.quotedName(u"Table").name;
    if (const auto here = run.position().occurrence(); name.empty() && here)
        name = run.file().schema()->occurrences[*here].name;
    check(run.position().truncateTable(name));
}

void sortByField(StepRun& run) {
    check(run.position().sort({{.place = run.field(targetOf(run.option(u"field")->text)),
                                .isDescending = run.says(u"order", u"descending")}}));
}

void goToRelatedRecord(StepRun& run) {
    Position& position = run.position();
    std::u16string layout = run.quotedName(u"Using layout").name;
    const std::optional<std::size_t> current = position.layout();
    if (layout.empty() && current) layout = run.file().schema()->layouts[*current].name;
    check(position.goToRelatedRecord(run.quotedName(u"From table").name, layout,
                                     run.says(u"records", u"show only related records")));
}

constexpr std::array kSteps{
    StepRow{
        .name = u"Go to Layout",
        .run = goToLayout,
        .options = {OptionRow{.name = u"original layout", .takes = Takes::words, .words = u"original layout"},
                    OptionRow{.name = u"layout", .takes = Takes::name},
                    OptionRow{.name = u"Layout Name", .isLabelled = true},
                    OptionRow{.name = u"Layout Number", .isLabelled = true}}},
    StepRow{
        .name = u"Go to Record/Request/Page",
        .run = goToRecord,
        .options =
            {OptionRow{.name = u"direction", .takes = Takes::words, .words = u"first|last|previous|next"},
             OptionRow{.name = u"number"},
             OptionRow{
                 .name = u"Exit after last", .takes = Takes::words, .isLabelled = true, .words = u"on|off"},
             kWithDialog}},
    StepRow{
        .name = u"Go to Related Record",
        .run = goToRelatedRecord,
        .options = {OptionRow{.name = u"records",
                              .takes = Takes::words,
                              .words = u"show only related records|match current record only"},
                    OptionRow{
                        .name = u"From table", .takes = Takes::name, .isLabelled = true, .isNeeded = true},
                    OptionRow{.name = u"Using layout", .takes = Takes::name, .isLabelled = true},
                    OptionRow{.name = u"Using layout",
                              .takes = Takes::words,
                              .isLabelled = true,
                              .words = u"<current layout>"}}},
    StepRow{.name = u"New Record/Request", .run = perform<&Position::newRecord>},
    StepRow{.name = u"Duplicate Record/Request", .run = perform<&Position::duplicateRecord>},
    StepRow{
        .name = u"Delete Record/Request", .run = perform<&Position::deleteRecord>, .options = {kWithDialog}},
    StepRow{
        .name = u"Delete All Records", .run = perform<&Position::deleteAllRecords>, .options = {kWithDialog}},
    StepRow{.name = u"Commit Records/Requests",
            .run = commitRecords,
            .options = {kWithDialog, kUnchecked, kOverride},
            .repeats = true},
    StepRow{.name = u"Truncate Table",
            .run = truncateTable,
            .options = {kWithDialog, OptionRow{.name = u"Table", .takes = Takes::name, .isLabelled = true},
                        OptionRow{.name = u"Table",
                                  .takes = Takes::words,
                                  .isLabelled = true,
                                  .words = u"<current table>"}}},
    StepRow{.name = u"Revert Record/Request", .run = perform<&Position::revert>, .options = {kWithDialog}},
    StepRow{.name = u"Enter Find Mode",
            .run = find<&Position::enterFindMode>,
            .options = {kRestore, OptionRow{.name = u"Pause",
                                            .takes = Takes::words,
                                            .isLabelled = true,
                                            .words = u"on|off"}}},
    StepRow{.name = u"Enter Browse Mode",
            .run = perform<&Position::enterBrowseMode>,
            .options = {OptionRow{
                .name = u"Pause", .takes = Takes::words, .isLabelled = true, .words = u"on|off"}}},
    StepRow{.name = u"Perform Find", .run = find<&Position::performFind>, .options = {kRestore}},
    StepRow{.name = u"Show All Records", .run = perform<&Position::showAllRecords>},
    StepRow{.name = u"Show Omitted Only", .run = perform<&Position::showOmittedOnly>},
    StepRow{.name = u"Omit Record", .run = perform<&Position::omitRecord>},
    StepRow{.name = u"Omit Multiple Records",
            .run = omitMultipleRecords,
            .options = {kWithDialog, OptionRow{.name = u"count", .isNeeded = true}}},
    StepRow{.name = u"Constrain Found Set", .run = find<&Position::constrainFoundSet>, .options = {kRestore}},
    StepRow{.name = u"Extend Found Set", .run = find<&Position::extendFoundSet>, .options = {kRestore}},
    StepRow{.name = u"Sort Records",
            .run = sortRecords,
            .options = {kRestore, kWithDialog, OptionRow{.name = u"field", .takes = Takes::field},
                        OptionRow{.name = u"order", .takes = Takes::words, .words = u"ascending|descending"}},
            .repeats = true},
    StepRow{.name = u"Sort Records by Field",
            .run = sortByField,
            .options = {OptionRow{.name = u"order", .takes = Takes::words, .words = u"ascending|descending"},
                        OptionRow{.name = u"field", .takes = Takes::field, .isNeeded = true}}},
    StepRow{.name = u"Unsort Records", .run = perform<&Position::unsort>},
};

} // namespace

std::span<const StepRow> recordSteps() { return kSteps; }

} // namespace host::scripts
