#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

#include <chrono>
#include <optional>

namespace panel::script {

// The words of one script line, taken one after the other. The first thing that is not as it
// should be becomes the error; after that everything taken is empty or zero.
class ScriptLine {
public:
    // Words are separated by blanks; "..." is one word, in which \" and \\ stand for " and \.
    // What follows a '#' outside quotes is a comment.
    explicit ScriptLine(const QString& text);

    bool isEmpty() const { return m_words.isEmpty() && m_error.isEmpty(); }
    bool atEnd() const { return m_next >= m_words.size(); }
    const QString& error() const { return m_error; }

    // `what` names the word in the error when it is missing.
    QString word(const QString& what);
    QStringList rest(const QString& what); // at least one
    int integer(const QString& what, int lowest, int highest);
    std::uint32_t hexadecimal(const QString& what);
    double number(const QString& what);
    std::chrono::milliseconds time(const QString& what); // "500ms", "2s", "0.5s"
    bool oneOf(const QString& what, const QString& yes, const QString& no);
    // Whether the next word stands in quotation marks.
    bool isQuoted() const;
    // Takes the next word when it is this one.
    bool optional(const QString& keyword);
    // "within TIME" at the end of the line is taken first, wherever the rest has got to.
    std::optional<std::chrono::milliseconds> takeLimit();

    void fail(const QString& message);

private:
    void split(const QString& text);

    QStringList m_words;
    QVector<bool> m_quoted; // for each of the words
    int m_next = 0;
    QString m_error;
};

} // namespace panel::script
