#include "views/ControlPanelView.h"

#include "views/PreferencesControlsView.h"
#include "views/ProcessListSectionView.h"
#include "views/ProcessRowView.h"
#include "views/StatusViews.h"
#include "views/ViewStyle.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QShortcut>
#include <QVBoxLayout>

namespace brenvik {

namespace {

// A hairline between sections.
class Divider : public QWidget {
public:
    explicit Divider(QWidget* parent)
        : QWidget(parent) {
        setFixedHeight(1);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(rect(), namedColor(NamedColor::separator, palette()));
    }
};

} // namespace

namespace {
constexpr int kPadding = 18;
constexpr int kSectionSpacing = 14;
constexpr int kHeaderSpacing = 6;
constexpr int kPreferencesHeight = 120;
constexpr int kProcessListHeight = 126;
// One row: when failure texts crowd the preferences, the other rows scroll.
constexpr int kProcessListMinimumHeight = 44;

QVBoxLayout* stack(int spacing, QWidget* owner = nullptr) {
    auto* layout = owner ? new QVBoxLayout(owner) : new QVBoxLayout;
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing);
    return layout;
}
} // namespace

ControlPanelView::ControlPanelView(CodexProcessMonitor& monitor,
                                   LaunchAtLoginController& launchAtLogin,
                                   AppVisibilityController& appVisibility, ViewActions& actions,
                                   QWidget* parent, NotificationsController* notifications,
                                   const SessionPlaceTracker* places)
    : MonitorStatusView(monitor, actions, parent)
    , m_errorLine(new ElidingLabel(TextStyle::footnote, NamedColor::red, this))
    , m_missingTrayLine(new ElidingLabel(TextStyle::footnote, NamedColor::red, this))
    , m_preferences(new PreferencesControlsView(launchAtLogin, appVisibility, this, notifications))
    , m_processList(new ProcessListSectionView(monitor, this, places))
    , m_goResultLine(new ElidingLabel(TextStyle::footnote, NamedColor::red, this))
    , m_lastUpdated(new LastUpdatedLabel(monitor.lastUpdated(), this))
    , m_refreshButton(new StyledButton(tr("Refresh Now"), StyledButton::bordered, this))
    , m_quitButton(new StyledButton(tr("Quit"), StyledButton::bordered, this)) {
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Window);

    auto* top = stack(kHeaderSpacing);
    top->addWidget(header());
    top->addWidget(m_errorLine);
    m_errorLine->setTextInteractionFlags(Qt::TextSelectableByMouse);
    top->addWidget(m_missingTrayLine);
    // Selectable: the package name is there to be copied.
    m_missingTrayLine->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_missingTrayLine->hide();

    auto* preferences = new QWidget(this);
    preferences->setMinimumHeight(kPreferencesHeight);
    auto* preferencesStack = stack(10, preferences);
    auto* preferencesTitle = new StyledLabel(TextStyle::headline, NamedColor::primary, preferences);
    preferencesTitle->setText(tr("Preferences"));
    preferencesStack->addWidget(preferencesTitle);
    preferencesStack->addWidget(m_preferences);
    preferencesStack->addStretch(1);

    // The section also takes the remaining height, below its list.
    auto* processes = new QWidget(this);
    processes->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
    auto* processesStack = stack(10, processes);
    auto* processesTitle = new StyledLabel(TextStyle::headline, NamedColor::primary, processes);
    processesTitle->setText(tr("Active processes"));
    processesStack->addWidget(processesTitle);
    // 126 high; it gives way only when failure texts crowd the preferences.
    m_processList->setMinimumHeight(kProcessListMinimumHeight);
    m_processList->setMaximumHeight(kProcessListHeight);
    processesStack->addWidget(m_processList, 1);
    processesStack->addWidget(m_goResultLine);
    m_goResultLine->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_goResultLine->hide();
    processesStack->addStretch(0);

    auto* footer = new QHBoxLayout;
    footer->setContentsMargins(0, 0, 0, 0);
    footer->addWidget(m_lastUpdated, 0, Qt::AlignVCenter);
    footer->addStretch(1);
    footer->addWidget(m_refreshButton, 0, Qt::AlignVCenter);
    footer->addWidget(m_quitButton, 0, Qt::AlignVCenter);
    m_refreshButton->setToolTip(tr("Refresh Now (R)"));

    auto* column = stack(kSectionSpacing, this);
    column->setContentsMargins(kPadding, kPadding, kPadding, kPadding);
    column->addLayout(top);
    column->addWidget(new Divider(this));
    column->addWidget(preferences);
    column->addWidget(new Divider(this));
    column->addWidget(processes, 1);
    column->addWidget(new Divider(this));
    column->addLayout(footer);

    connect(m_processList, &ProcessListSectionView::goRequested, this,
            [this](qint64 pid) { m_actions.goToSession(pid); });
    connect(m_refreshButton, &StyledButton::clicked, this, [this] { m_actions.refreshNow(); });
    connect(m_quitButton, &StyledButton::clicked, this, [this] { m_actions.quit(); });
    // R alone, while this window is active, presses "Refresh Now".
    auto* refreshKey = new QShortcut(QKeySequence(Qt::Key_R), this);
    refreshKey->setContext(Qt::WindowShortcut);
    connect(refreshKey, &QShortcut::activated, m_refreshButton, &StyledButton::animateClick);

    updateFromMonitor();
    // Never smaller than it needs: what a larger font or scale asks for.
    setMinimumSize(layout()->minimumSize());
    resize(naturalSize());
}

QSize ControlPanelView::wantedSize(const QSize& natural) const {
    const int width = std::max(natural.width(), minimumWidth());
    return {width, std::max(natural.height(), heightForWidth(width))};
}

QSize ControlPanelView::naturalSize() const {
    // The list at its full three rows, everything else as it wants to be at
    // this width (a larger font wraps the preferences' texts).
    const int width = std::max(kWidth, layout()->minimumSize().width());
    // Three rows as tall as the font makes them, measured on one with text in
    // every line: with some fonts an empty line is a pixel shorter.
    ProcessMatch sample;
    sample.command = QStringLiteral("codex");
    const ProcessRowView row(sample, QDateTime());
    const int listHeight = kProcessListHeight + 3 * (row.height() - ProcessRowView::kHeight);
    // A list of fixed height does not tell the layouts above it: they are told here.
    const auto setListHeight = [this](int minimum, int maximum) {
        m_processList->setMinimumHeight(minimum);
        m_processList->setMaximumHeight(maximum);
        m_processList->parentWidget()->layout()->invalidate();
        m_processList->parentWidget()->updateGeometry();
    };
    setListHeight(listHeight, listHeight);
    const int height = layout()->hasHeightForWidth() ? layout()->totalHeightForWidth(width)
                                                     : layout()->totalSizeHint().height();
    setListHeight(kProcessListMinimumHeight, listHeight);
    // Room for the line that names waiting sessions, so that nothing moves or
    // scrolls when one starts waiting.
    const int waiting = header()->waitingText().isEmpty() ? header()->waitingLineHeight() : 0;
    // The missing-tray line lasts only until a tray comes: the window grows
    // for it meanwhile, not for good.
    const int missingTray =
        m_missingTrayLine->isHidden() ? 0 : m_missingTrayLine->sizeHint().height() + kHeaderSpacing;
    return {width, std::max(kHeight, height + waiting - missingTray)};
}

void ControlPanelView::setMissingTrayText(const QString& text) {
    m_missingTrayLine->setFullText(text);
    m_missingTrayLine->setVisible(!text.isEmpty());
    // The line names a package to install, so it is never cut short: with a
    // wide font the panel widens for it meanwhile.
    const int line = text.isEmpty() ? 0 : m_missingTrayLine->sizeHint().width() + 2 * kPadding;
    setMinimumWidth(std::max(layout()->minimumSize().width(), line));
}

void ControlPanelView::showGoResult(const GoResult& result) {
    m_goResultLine->setColor(result.outcome == GoResult::Outcome::failed ? NamedColor::red
                                                                         : NamedColor::secondary);
    m_goResultLine->setFullText(result.text);
    m_goResultLine->setVisible(!result.text.isEmpty());
}

void ControlPanelView::updateFromMonitor() {
    MonitorStatusView::updateFromMonitor();
    const CodexRunState state = m_monitor.runState();
    const auto* error = state.asError();
    m_errorLine->setFullText(error ? error->message : QString());
    m_errorLine->setVisible(error != nullptr);
    m_lastUpdated->setLastUpdated(m_monitor.lastUpdated());
}

} // namespace brenvik
