#include "script.h"

#include "command.h"
#include "faultorder.h"
#include "ordercheck.h"

#include <algorithm>

namespace panel::script {

namespace {

QStringList commandNames(const QString& firstWord) {
    QStringList names;
    for (const Command& command : allCommands()) {
        const QString name = QString::fromLatin1(command.name);
        if (firstWord.isEmpty() || name.startsWith(firstWord + ' ')) {
            names += name;
        }
    }
    return names;
}

const Command* findCommand(ScriptLine& line) {
    const QString first = line.word(QStringLiteral("the command"));
    const bool twoWords = !commandNames(first).isEmpty();
    const QString name =
        twoWords ? first + ' ' + line.word(QStringLiteral("the second word of \"%1\"").arg(first))
                 : first;
    const CommandTable& commands = allCommands();
    const auto found = std::find_if(commands.begin(), commands.end(),
                                    [&name](const Command& c) { return name == c.name; });
    if (found == commands.end()) {
        line.fail(
            QStringLiteral("there is no command \"%1\"; there is %2")
                .arg(name, commandNames(twoWords ? first : QString()).join(QStringLiteral(", "))));
        return nullptr;
    }
    return &*found;
}

// Null and an error in the line when it is not a command.
std::optional<Statement> parseStatement(ScriptLine& line) {
    const auto limit = line.takeLimit();
    const Command* command = findCommand(line);
    if (command == nullptr) {
        return std::nullopt;
    }
    Statement statement;
    statement.action = command->parse(line);
    if (limit && !statement.action->takesLimit()) {
        line.fail(QStringLiteral("\"within\" has no meaning for \"%1\"; leave it out")
                      .arg(QString::fromLatin1(command->name)));
    }
    if (line.error().isEmpty() && !line.atEnd()) {
        line.fail(QStringLiteral("\"%1\" is too much; put texts with blanks in quotation marks")
                      .arg(line.word(QString())));
    }
    statement.limit = limit.value_or(defaultWaitLimit);
    return statement;
}

} // namespace

Script parse(const QString& text, const QString& name) {
    Script script;
    OrderCheck order;
    const QStringList lines = text.split('\n');
    for (int i = 0; i < lines.size(); ++i) {
        ScriptLine line(lines[i]);
        if (line.isEmpty()) {
            continue;
        }
        std::optional<Statement> statement = parseStatement(line);
        if (!line.error().isEmpty()) {
            script.errors += QStringLiteral("%1:%2: %3").arg(name).arg(i + 1).arg(line.error());
            continue;
        }
        statement->line = i + 1;
        statement->text = lines[i].trimmed();
        const QString senseless = order.mistakeIn(*statement);
        if (!senseless.isEmpty()) {
            script.errors += QStringLiteral("%1:%2: %3").arg(name).arg(i + 1).arg(senseless);
        }
        script.statements.push_back(*std::move(statement));
    }
    return script;
}

QString help() {
    constexpr int column = 40;
    const QString indent = '\n' + QString(column, ' ');
    QString help;
    for (const Command& command : allCommands()) {
        const QString usage = QStringLiteral("  %1 %2").arg(command.name, command.arguments);
        QString text = QString::fromLatin1(command.help);
        help += usage.size() < column ? usage.leftJustified(column) : usage + indent;
        help += text.replace('\n', indent) + '\n';
    }
    return help +
           QStringLiteral("\n  FAULT is one of these; what is in brackets may be left out:\n") +
           faultHelp();
}

} // namespace panel::script
