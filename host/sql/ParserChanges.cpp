#include "host/sql/Parser.h"
#include "host/sql/Problems.h"

#include <array>
#include <utility>

namespace host::sql {

namespace {

/// A text literal of calculations.
std::u16string quotedText(std::u16string_view text) {
    std::u16string quoted = u"\"";
    for (const char16_t unit : text) {
        if (unit == u'"' || unit == u'\\') quoted += u'\\';
        quoted += unit;
    }
    return quoted + u'"';
}

/// The calculation of a date that is written YYYY-MM-DD.
std::u16string dateCall(const std::u16string& date) {
    return u"Date ( " + date.substr(5, 2) + u" ; " + date.substr(8, 2) + u" ; " + date.substr(0, 4) + u" )";
}

struct NamedValue {
    std::string_view word;
    std::u16string_view calculation;
};

constexpr std::array namedValues{NamedValue{"NULL", u""},
                                 NamedValue{"USER", u"Get ( AccountName )"},
                                 NamedValue{"USERNAME", u"Get ( AccountName )"},
                                 NamedValue{"CURRENT_USER", u"Get ( AccountName )"},
                                 NamedValue{"CURRENT_DATE", u"Get ( CurrentDate )"},
                                 NamedValue{"CURDATE", u"Get ( CurrentDate )"},
                                 NamedValue{"CURRENT_TIME", u"Get ( CurrentTime )"},
                                 NamedValue{"CURTIME", u"Get ( CurrentTime )"},
                                 NamedValue{"CURRENT_TIMESTAMP", u"Get ( CurrentTimestamp )"},
                                 NamedValue{"CURTIMESTAMP", u"Get ( CurrentTimestamp )"}};

struct NamedType {
    std::string_view word, second; ///< the second may be empty
    DataType type;
    bool hasLength;
};

// A longer name stands before its beginning.
constexpr std::array namedTypes{NamedType{"NUMERIC", "", DataType::number, true},
                                NamedType{"DECIMAL", "", DataType::number, true},
                                NamedType{"INT", "", DataType::number, false},
                                NamedType{"VARCHAR", "", DataType::text, true},
                                NamedType{"CHARACTER", "VARYING", DataType::text, true},
                                NamedType{"DATE", "", DataType::date, false},
                                NamedType{"TIMESTAMP", "", DataType::timestamp, false},
                                NamedType{"TIME", "", DataType::time, false},
                                NamedType{"BLOB", "", DataType::binary, true},
                                NamedType{"VARBINARY", "", DataType::binary, true},
                                NamedType{"LONGVARBINARY", "", DataType::binary, true},
                                NamedType{"BINARY", "VARYING", DataType::binary, true}};

} // namespace

void Parser::tableName(StatementTree& tree) {
    tree.tablePosition = token().position;
    tree.table = name();
}

Target Parser::target(bool isSet) {
    Target made{.name = {}, .repetition = 1, .position = token().position};
    made.name = name();
    if (isSet && isNext("[") && token(1).kind != TokenKind::number)
        throw Problem{.code = Fql::variableRepetition, .position = token(1).position};
    made.repetition = repetition();
    return made;
}

/// An expression, `PUTAS ( ? , 'JPEG' )`, or `? AS 'name.ext'`.
ExpressionRef Parser::value() {
    if (isNext("PUTAS") && isNext("(", 1)) {
        place_ += 2;
        ExpressionRef container = sum();
        expect(",");
        text();
        expect(")");
        return container;
    }
    ExpressionRef made = sum();
    if (made->kind == ExpressionKind::parameter && take("AS")) text();
    return made;
}

void Parser::insert(StatementTree& tree) {
    tableName(tree);
    Insert body;
    if (take("(")) {
        do
            body.columns.push_back(target(false));
        while (takeNext(body.columns.size()));
        expect(")");
    }
    if (isNext("SELECT")) {
        body.select = select(true);
    } else {
        expect("VALUES");
        expect("(");
        do
            body.values.push_back(value());
        while (takeNext(body.values.size()));
        expect(")");
    }
    tree.body = std::move(body);
}

void Parser::update(StatementTree& tree) {
    tableName(tree);
    expect("SET");
    Update body;
    do {
        body.columns.push_back(target(true));
        expect("=");
        body.values.push_back(value());
    } while (takeNext(body.values.size()));
    if (take("WHERE")) body.condition = condition();
    tree.body = std::move(body);
}

void Parser::createTable(StatementTree& tree) {
    tableName(tree);
    CreateTable body;
    expect("(");
    do
        body.columns.push_back(columnDefinition());
    while (takeNext(body.columns.size()));
    expect(")");
    tree.body = std::move(body);
}

void Parser::alterTable(StatementTree& tree) {
    tableName(tree);
    if (take("ADD")) {
        take("COLUMN");
        tree.body = AddColumn{columnDefinition()};
    } else if (take("DROP")) {
        take("COLUMN");
        tree.body = DropColumn{name()};
    } else {
        expect("ALTER");
        take("COLUMN");
        std::u16string column = name();
        if (takeAll({"DROP", "DEFAULT"})) {
            tree.body = SetDefault{std::move(column), {}};
        } else {
            expect("SET");
            expect("DEFAULT");
            tree.body = SetDefault{std::move(column), initialValue()};
        }
    }
}

void Parser::indexColumn(StatementTree& tree, bool isMade) {
    tableName(tree);
    expect(".");
    tree.body = ChangeIndex{.column = name(), .isMade = isMade};
}

ColumnDefinition Parser::columnDefinition() {
    ColumnDefinition made;
    made.position = token().position;
    made.name = name();
    int length = 0;
    made.type = type(length);
    made.repetitions = repetition();
    while (!isNext(",") && !isNext(")") && !isNext(";") && token().kind != TokenKind::end)
        columnOption(made);
    return made;
}

void Parser::columnOption(ColumnDefinition& column) {
    if (take("DEFAULT"))
        column.initial = initialValue();
    else if (take("UNIQUE"))
        column.isUnique = true;
    else if (takeAll({"NOT", "NULL"}))
        column.isRequired = true;
    else if (takeAll({"PRIMARY", "KEY"}))
        column.isUnique = column.isRequired = true;
    else if (take("GLOBAL"))
        column.isGlobal = true;
    else if (take("EXTERNAL")) {
        // The place of a container's files is not used: this store keeps them itself.
        text();
        if (take("OPEN"))
            text();
        else if (isNext("SECURE"))
            ++place_;
        else
            fail();
    } else
        fail();
}

std::u16string Parser::initialValue() {
    for (const NamedValue& value : namedValues)
        if (take(value.word)) return std::u16string(value.calculation);
    if (token().kind == TokenKind::text) return quotedText(text());
    const ExpressionRef made = sum();
    const Expression* literal = made.get();
    std::u16string sign;
    if (literal->kind == ExpressionKind::sign) {
        sign = literal->word == "-" ? u"-" : u"";
        literal = literal->operands.front().get();
    }
    if (literal->kind != ExpressionKind::literal) fail();
    switch (literal->type) {
    case DataType::number: return sign + literal->name;
    case DataType::date: return dateCall(literal->name);
    default: fail();
    }
}

DataType Parser::type(int& length) {
    constexpr double longest = 1'000'000'000;
    for (const NamedType& named : namedTypes) {
        if (!isNext(named.word) || (!named.second.empty() && !isNext(named.second, 1))) continue;
        place_ += named.second.empty() ? 1 : 2;
        if (named.hasLength && take("(")) {
            length = static_cast<int>(number(longest));
            if (take(",")) number(longest);
            expect(")");
        }
        return named.type;
    }
    fail();
}

} // namespace host::sql
