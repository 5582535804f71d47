#include "inspectdock.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSet>
#include <QTabWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace panel {

namespace {

constexpr int inspectionRefreshMs = 200;
constexpr int leastWidth = 420;
constexpr int memoryBytes = 256;
constexpr int wordsRole = Qt::UserRole; // of an item: the words it stands for
constexpr std::array<double, 9> speeds{0.01, 0.05, 0.1, 0.25, 0.5, 1, 2, 5, 10};

int nearestSpeed(double speed) {
    const auto found = std::lower_bound(speeds.begin(), speeds.end(), speed);
    return static_cast<int>(std::min<std::ptrdiff_t>(
        found - speeds.begin(), static_cast<std::ptrdiff_t>(speeds.size()) - 1));
}

QTreeWidget* makeTree(const QStringList& columns) {
    auto* tree = new QTreeWidget;
    tree->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    tree->setHeaderLabels(columns);
    tree->setHeaderHidden(columns.size() == 1);
    tree->setUniformRowHeights(true);
    tree->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    tree->header()->setStretchLastSection(false);
    return tree;
}

QWidget* column(std::initializer_list<QWidget*> widgets) {
    auto* all = new QWidget;
    auto* layout = new QVBoxLayout(all);
    for (QWidget* widget : widgets) {
        layout->addWidget(widget);
    }
    return all;
}

void setWords(QTreeWidgetItem& item, const std::vector<std::size_t>& indices) {
    QVariantList words = item.data(0, wordsRole).toList();
    for (const std::size_t index : indices) {
        words += static_cast<qulonglong>(index);
    }
    item.setData(0, wordsRole, words);
}

QString wordText(const WordReport& word) {
    return QStringLiteral("%1  %2").arg(word.index, 4).arg(word.text);
}

// From what put it there to what made it, each with what brought it.
void addCauses(QTreeWidgetItem& item, const std::vector<Cause>& causes) {
    for (const Cause& cause : causes) {
        auto* by = new QTreeWidgetItem(&item, {QStringLiteral("by ") + cause.text});
        new QTreeWidgetItem(by, {cause.transactions});
    }
}

QTreeWidgetItem* stepItem(const StepReport& step) {
    QString text = wordText(step.drawing());
    if (step.words.size() > 1) {
        text = step.words.front().text + QStringLiteral(": ") + text.simplified();
    }
    text += step.colours
                ? QStringLiteral("  %1%2").arg(colourText(step.after),
                                               step.covers ? QString() : QStringLiteral(" (mixed)"))
                : QStringLiteral("  (tag only)");
    auto* item = new QTreeWidgetItem({text});
    item->setData(0, Qt::DecorationRole, QColor(QRgb(step.after)));
    setWords(*item, step.indices());
    for (const WordReport& word : step.words) {
        auto* child = new QTreeWidgetItem(item, {wordText(word)});
        setWords(*child, {word.index});
    }
    addCauses(*item, step.drawing().causes);
    return item;
}

bool isSame(const std::vector<WordReport>& a, const std::vector<WordReport>& b) {
    return std::equal(
        a.begin(), a.end(), b.begin(), b.end(), [](const WordReport& x, const WordReport& y) {
            return x.word == y.word && x.causes.size() == y.causes.size() &&
                   std::equal(x.causes.begin(), x.causes.end(), y.causes.begin(),
                              [](const Cause& c, const Cause& d) { return c.text == d.text; });
        });
}

// Where a word belongs: an item for each command on its way, from what put it into the list down to
// what made it; neighbours share them.
QTreeWidgetItem* groupOf(QTreeWidget& tree, const WordReport& word) {
    QTreeWidgetItem* group = tree.invisibleRootItem();
    for (const Cause& cause : word.causes) {
        QTreeWidgetItem* last =
            group->childCount() > 0 ? group->child(group->childCount() - 1) : nullptr;
        const bool goesOn =
            last != nullptr && last->data(0, wordsRole + 1).toUInt() == cause.number;
        if (!goesOn) {
            last = new QTreeWidgetItem(group, {cause.text});
            last->setData(0, wordsRole + 1, cause.number);
            last->setToolTip(0, cause.transactions);
        }
        setWords(*last, {word.index});
        group = last;
    }
    return group;
}

void noteOpen(const QTreeWidgetItem& item, const QString& path, QSet<QString>& open) {
    for (int i = 0; i < item.childCount(); ++i) {
        const QString here = path + '/' + item.child(i)->text(0);
        if (item.child(i)->isExpanded()) {
            open += here;
        }
        noteOpen(*item.child(i), here, open);
    }
}

void reopen(QTreeWidgetItem& item, const QString& path, const QSet<QString>& open) {
    for (int i = 0; i < item.childCount(); ++i) {
        const QString here = path + '/' + item.child(i)->text(0);
        item.child(i)->setExpanded(open.contains(here));
        reopen(*item.child(i), here, open);
    }
}

// Shows what has the text in it, with all above and below. Whether there is any.
bool filter(QTreeWidgetItem& item, const QString& text, bool isBelowFound) {
    const bool isFound = isBelowFound || item.text(0).contains(text, Qt::CaseInsensitive);
    bool any = isFound;
    for (int i = 0; i < item.childCount(); ++i) {
        any = filter(*item.child(i), text, isFound) || any;
    }
    item.setHidden(!any);
    if (!text.isEmpty() && any && !isBelowFound) {
        item.setExpanded(true);
    }
    return any;
}

} // namespace

InspectDock::InspectDock(Inspector& inspector, QWidget* parent)
    : QDockWidget(tr("Inspector"), parent), m_inspector(inspector), m_tabs(new QTabWidget) {
    m_tabs->addTab(makePixelTab(), tr("Pixel"));
    m_tabs->addTab(makeListTab(), tr("List"));
    m_tabs->addTab(makeRegisterTab(), tr("Registers"));
    m_tabs->addTab(makeMemoryTab(), tr("Memory"));
    QWidget* all = column({makeTimeRow(), m_doing, m_tabs});
    all->setMinimumWidth(leastWidth);
    setWidget(all);
    connect(m_tabs, &QTabWidget::currentChanged, this, &InspectDock::refresh);
    connect(&m_timer, &QTimer::timeout, this, &InspectDock::refresh);
}

QWidget* InspectDock::makeTimeRow() {
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    const auto button = [&](const QString& text, KeyAction action) {
        auto* made = new QPushButton(text);
        layout->addWidget(made);
        connect(made, &QPushButton::clicked, this, [this, action] { perform(action); });
        return made;
    };
    m_pause = button(tr("Pause"), KeyAction::Pause);
    button(tr("Frame"), KeyAction::StepFrame);
    button(tr("Command"), KeyAction::StepCommand);
    m_speed = new QComboBox;
    for (const double speed : speeds) {
        m_speed->addItem(tr("%1 x").arg(speed));
    }
    layout->addWidget(m_speed);
    connect(m_speed, QOverload<int>::of(&QComboBox::activated), this, [this](int index) {
        m_inspector.module().setSpeed(speeds.at(static_cast<std::size_t>(index)));
    });
    m_doing = new QLabel;
    m_doing->setWordWrap(true);
    return row;
}

QWidget* InspectDock::makePixelTab() {
    m_hold = new QPushButton(tr("Hold this pixel"));
    m_hold->setCheckable(true);
    m_pixelLabel = new QLabel(tr("Move the mouse over the panel"));
    m_steps = makeTree({tr("What has drawn it, topmost first")});
    m_steps->setHeaderHidden(false);
    connect(m_steps, &QTreeWidget::currentItemChanged, this,
            [this](QTreeWidgetItem* item) { outlineSelected(item); });
    return column({m_pixelLabel, m_hold, m_steps});
}

QWidget* InspectDock::makeListTab() {
    m_listSearch = new QLineEdit;
    m_listSearch->setPlaceholderText(tr("Words and commands with this in them"));
    m_listSearch->setClearButtonEnabled(true);
    m_list = makeTree({tr("Word")});
    connect(m_listSearch, &QLineEdit::textChanged, this, &InspectDock::filterList);
    connect(m_list, &QTreeWidget::currentItemChanged, this,
            [this](QTreeWidgetItem* item) { outlineSelected(item); });
    return column({m_listSearch, m_list});
}

QWidget* InspectDock::makeRegisterTab() {
    m_registerSearch = new QLineEdit;
    m_registerSearch->setPlaceholderText(tr("Registers with this in their name"));
    m_registerSearch->setClearButtonEnabled(true);
    m_registers = makeTree({tr("Register"), tr("Hexadecimal"), tr("Decimal")});
    connect(m_registerSearch, &QLineEdit::textChanged, this, &InspectDock::refresh);
    return column({m_registerSearch, m_registers});
}

QWidget* InspectDock::makeMemoryTab() {
    m_place = new QLineEdit(QStringLiteral("RAM_G"));
    m_place->setToolTip(tr("RAM_G+100000, REG_ID, 0x186A0"));
    m_memory = new QPlainTextEdit;
    m_memory->setReadOnly(true);
    m_memory->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_memory->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    connect(m_place, &QLineEdit::textChanged, this, &InspectDock::refresh);
    return column({m_place, m_memory});
}

void InspectDock::showEvent(QShowEvent* event) {
    QDockWidget::showEvent(event);
    m_timer.start(inspectionRefreshMs);
    refresh();
}

void InspectDock::hideEvent(QHideEvent* event) {
    QDockWidget::hideEvent(event);
    m_timer.stop();
    emit outlined({});
}

void InspectDock::hover(QPoint pixel) {
    if (m_hold->isChecked() || pixel == m_pixel) {
        return;
    }
    m_pixel = pixel;
    if (isVisible() && m_tabs->currentIndex() == 0) {
        showPixel();
    }
}

void InspectDock::perform(KeyAction action) {
    DisplayModule& module = m_inspector.module();
    QString doing;
    switch (action) {
    case KeyAction::Inspect:
        setVisible(!isVisible());
        break;
    case KeyAction::HoldPixel:
        m_hold->toggle();
        break;
    case KeyAction::Pause:
        module.setPaused(!module.isPaused());
        break;
    case KeyAction::StepFrame:
        module.stepFrame();
        doing = tr("Frame %1").arg(module.counts().frames);
        break;
    case KeyAction::StepCommand:
        doing = module.stepCommand()
                    ? m_inspector.lastCommand().value_or(Cause()).text
                    : tr("No command: the ring is empty, or it waits for the end of the frame");
        break;
    case KeyAction::Slower:
        changeSpeed(-1);
        break;
    case KeyAction::Faster:
        changeSpeed(1);
        break;
    default:
        return;
    }
    m_doing->setText(doing);
    refresh();
}

void InspectDock::changeSpeed(int steps) {
    const int index = std::clamp(nearestSpeed(m_inspector.module().speed()) + steps, 0,
                                 static_cast<int>(speeds.size()) - 1);
    m_inspector.module().setSpeed(speeds.at(static_cast<std::size_t>(index)));
}

void InspectDock::refresh() {
    if (!isVisible()) {
        return;
    }
    showTime();
    switch (m_tabs->currentIndex()) {
    case 0:
        return showPixel();
    case 1:
        return showList();
    case 2:
        return showRegisters();
    default:
        return showMemory();
    }
}

void InspectDock::showTime() {
    if (!m_speed->view()->isVisible()) {
        m_speed->setCurrentIndex(nearestSpeed(m_inspector.module().speed()));
    }
    m_pause->setText(m_inspector.module().isPaused() ? tr("Go") : tr("Pause"));
}

// Anew only when there is something new, so that what is selected stays so.
void InspectDock::showPixel() {
    if (m_pixel.x() < 0) {
        return;
    }
    const PixelReport pixel = m_inspector.pixel(m_pixel.x(), m_pixel.y());
    const QString text = linesOf(pixel).join('\n');
    if (text == m_pixelText) {
        return;
    }
    m_pixelText = text;
    m_pixelLabel->setText(linesOf(pixel).first());
    m_steps->clear();
    for (auto step = pixel.steps.rbegin(); step != pixel.steps.rend(); ++step) {
        m_steps->addTopLevelItem(stepItem(*step));
    }
    if (QTreeWidgetItem* top = m_steps->topLevelItem(0)) {
        m_steps->expandRecursively(m_steps->model()->index(0, 0));
        m_steps->setCurrentItem(top);
    } else {
        emit outlined({});
    }
}

void InspectDock::showList() {
    std::vector<WordReport> words = m_inspector.list();
    if (isSame(words, m_words)) {
        return;
    }
    m_words = std::move(words);
    QSet<QString> open;
    noteOpen(*m_list->invisibleRootItem(), {}, open);
    m_list->clear();
    for (const WordReport& word : m_words) {
        auto* item = new QTreeWidgetItem(groupOf(*m_list, word), {wordText(word)});
        setWords(*item, {word.index});
    }
    reopen(*m_list->invisibleRootItem(), {}, open);
    filterList();
}

void InspectDock::filterList() {
    for (int i = 0; i < m_list->topLevelItemCount(); ++i) {
        filter(*m_list->topLevelItem(i), m_listSearch->text(), false);
    }
}

void InspectDock::showRegisters() {
    const std::vector<RegisterReport> reports = m_inspector.registers();
    const auto count = static_cast<int>(reports.size());
    while (m_registers->topLevelItemCount() < count) {
        m_registers->addTopLevelItem(new QTreeWidgetItem);
    }
    for (int i = 0; i < count; ++i) {
        const RegisterReport& report = reports[static_cast<std::size_t>(i)];
        QTreeWidgetItem* item = m_registers->topLevelItem(i);
        item->setText(0, report.name);
        item->setText(1, "0x" + QString::number(report.value, 16).toUpper().rightJustified(8, '0'));
        item->setText(2, QString::number(static_cast<std::int32_t>(report.value)));
        item->setHidden(!report.name.contains(m_registerSearch->text(), Qt::CaseInsensitive));
    }
}

void InspectDock::showMemory() {
    const auto address = m_inspector.addressOf(m_place->text());
    const QString text =
        address ? linesOf(*address, m_inspector.memory(*address, memoryBytes)).join('\n')
                : tr("There is no such place: RAM_G+100000, REG_ID, 0x186A0 are");
    if (text != m_memory->toPlainText()) {
        m_memory->setPlainText(text);
    }
}

void InspectDock::outlineSelected(const QTreeWidgetItem* item) {
    std::vector<std::size_t> words;
    for (; item != nullptr && words.empty(); item = item->parent()) {
        for (const QVariant& word : item->data(0, wordsRole).toList()) {
            words.push_back(static_cast<std::size_t>(word.toULongLong()));
        }
    }
    emit outlined(words.empty() ? QRect() : m_inspector.outline(words));
}

} // namespace panel
