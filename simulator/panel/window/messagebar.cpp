#include "messagebar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace panel {

namespace {

constexpr int noticeMs = 5000;
constexpr int problemsShown = 3;
// Legible beside a light desktop and a dark one.
constexpr QRgb problemBackground = 0xFF8C1D18;
constexpr QRgb problemText = 0xFFFFFFFF;

QPalette problemPalette() {
    QPalette palette{QColor(problemBackground)};
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::ButtonText}) {
        palette.setColor(role, QColor(problemText));
    }
    return palette;
}

QLabel* plainLabel() {
    auto* label = new QLabel;
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setWordWrap(true);
    return label;
}

} // namespace

MessageBar::MessageBar(QWidget* parent)
    : QFrame(parent), m_progress(plainLabel()), m_notice(plainLabel()), m_problem(plainLabel()),
      m_problemFrame(new QFrame) {
    for (QLabel* label : {m_progress, m_notice}) {
        label->setContentsMargins(sideMargin, 0, sideMargin, 0);
    }
    m_notice->setMinimumHeight(m_notice->fontMetrics().height()); // the next one causes no jump
    m_progress->hide();

    auto* close = new QToolButton;
    close->setText(tr("Close"));
    close->setAutoRaise(true);
    m_problemFrame->setPalette(problemPalette());
    m_problemFrame->setAutoFillBackground(true);
    m_problemFrame->hide();
    auto* line = new QHBoxLayout(m_problemFrame);
    line->setContentsMargins(sideMargin, 4, sideMargin, 4);
    line->addWidget(m_problem, 1);
    line->addWidget(close, 0, Qt::AlignTop);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(m_problemFrame);
    layout->addWidget(m_progress);
    layout->addWidget(m_notice);

    m_noticeTime.setSingleShot(true);
    m_noticeTime.setInterval(noticeMs);
    connect(&m_noticeTime, &QTimer::timeout, this, [this] { set(m_notice, {}); });
    connect(close, &QToolButton::clicked, this, [this] { closeProblems(); });
}

void MessageBar::setProgress(const QString& text) {
    m_progress->setVisible(!text.isEmpty());
    set(m_progress, text);
}

void MessageBar::showNotice(const QString& text) {
    set(m_notice, text);
    m_noticeTime.start();
}

void MessageBar::showProblem(const QString& text) {
    m_problems += text;
    QStringList lines = m_problems.mid(std::max(0, m_problems.size() - problemsShown));
    if (lines.size() < m_problems.size()) {
        lines.prepend(tr("(%1 before these)").arg(m_problems.size() - lines.size()));
    }
    m_problemFrame->show();
    set(m_problem, lines.join('\n'));
}

void MessageBar::closeProblems() {
    m_problems.clear();
    m_problemFrame->hide();
    set(m_problem, {});
}

void MessageBar::set(QLabel* label, const QString& text) {
    if (text != label->text()) {
        label->setText(text);
        emit changed();
    }
}

QString MessageBar::progress() const {
    return m_progress->text();
}

QString MessageBar::notice() const {
    return m_notice->text();
}

QString MessageBar::problem() const {
    return m_problem->text();
}

} // namespace panel
