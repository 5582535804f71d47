#pragma once

#include <QFrame>
#include <QStringList>
#include <QTimer>

class QLabel;

namespace panel {

// Between the window's edge and text, in the bar and beside it.
constexpr int sideMargin = 8;

// What the user should know: how far a script is, the last notice, the last problem. Each has a
// place of its own, which grows with what it shows, so none covers anything.
class MessageBar : public QFrame {
    Q_OBJECT

public:
    explicit MessageBar(QWidget* parent = nullptr);

    void setProgress(const QString& text); // empty: there is no script
    void showNotice(const QString& text);  // goes by itself after some seconds
    // Stays until the user closes it. `text` is shown as it is, in as many lines as it needs; of
    // many problems the last three are shown.
    void showProblem(const QString& text);

    QString progress() const;
    QString notice() const;
    QString problem() const;

signals:
    void changed(); // it may need another height for its width

private:
    void closeProblems();
    void set(QLabel* label, const QString& text);

    QLabel* const m_progress;
    QLabel* const m_notice;
    QLabel* const m_problem;
    QFrame* const m_problemFrame;
    QTimer m_noticeTime;
    QStringList m_problems;
};

} // namespace panel
