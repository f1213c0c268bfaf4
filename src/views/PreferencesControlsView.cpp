#include "views/PreferencesControlsView.h"

#include "views/CoalescedUpdate.h"
#include "views/PreferencesPresentation.h"
#include "views/ToggleSwitch.h"
#include "views/ViewStyle.h"

#include <QVBoxLayout>

namespace brenvik {

namespace {

// A caption under a switch, on as many lines as it needs: a status says in
// full why a switch is off.
StyledLabel* explanation(NamedColor color, QWidget* parent) {
    auto* label = new StyledLabel(TextStyle::caption, color, parent);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    return label;
}

// A failure text in red, at most two lines; its tool tip holds all of it.
StyledLabel* failureText(QWidget* parent) {
    StyledLabel* label = explanation(NamedColor::red, parent);
    label->setMaximumLines(2);
    return label;
}

void showError(StyledLabel* label, const std::optional<QString>& error) {
    label->setText(error.value_or(QString()));
    label->setToolTip(error.value_or(QString()));
    label->setVisible(error.has_value());
}

} // namespace

PreferencesControlsView::PreferencesControlsView(LaunchAtLoginController& launchAtLogin,
                                                 AppVisibilityController& appVisibility,
                                                 QWidget* parent,
                                                 NotificationsController* notifications)
    : QWidget(parent)
    , m_launchAtLogin(launchAtLogin)
    , m_appVisibility(appVisibility)
    , m_updates(new CoalescedUpdate([this] { updateFromControllers(); }, this))
    , m_launchSwitch(new ToggleSwitch(tr("Launch at login"), this))
    , m_launchStatus(explanation(NamedColor::secondary, this))
    , m_launchError(failureText(this))
    , m_dockSwitch(new ToggleSwitch(tr("Show in taskbar while running"), this))
    , m_dockDescription(explanation(NamedColor::secondary, this))
    , m_dockError(failureText(this))
    , m_notifications(notifications) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(10);
    for (QWidget* child :
         {static_cast<QWidget*>(m_launchSwitch), static_cast<QWidget*>(m_launchStatus),
          static_cast<QWidget*>(m_launchError), static_cast<QWidget*>(m_dockSwitch),
          static_cast<QWidget*>(m_dockDescription), static_cast<QWidget*>(m_dockError)})
        column->addWidget(child);
    if (m_notifications) {
        m_notifySwitch = new ToggleSwitch(tr("Notify when a session finishes or needs you"), this);
        StyledLabel* description = explanation(NamedColor::secondary, this);
        description->setText(tr("A desktop notification when a session is done or asks you"));
        m_notifyError = failureText(this);
        column->addWidget(m_notifySwitch);
        column->addWidget(description);
        column->addWidget(m_notifyError);
        connect(m_notifySwitch, &ToggleSwitch::toggleRequested, this,
                [this](bool on) { m_notifications->setEnabled(on); });
        m_updates->observe(m_notifications);
    }
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);

    connect(m_launchSwitch, &ToggleSwitch::toggleRequested, this,
            [this](bool on) { m_launchAtLogin.setEnabled(on); });
    connect(m_dockSwitch, &ToggleSwitch::toggleRequested, this,
            [this](bool on) { m_appVisibility.setShowDockIcon(on); });

    m_updates->observe(&m_launchAtLogin);
    m_updates->observe(&m_appVisibility);
    updateFromControllers();
}

int PreferencesControlsView::updateCount() const {
    return m_updates->count();
}

void PreferencesControlsView::updateFromControllers() {
    const LaunchAtLoginPresentation login = launchAtLoginPresentation(
        m_launchAtLogin.status(), m_launchAtLogin.entry().unstableExecutableReason());
    m_launchSwitch->setChecked(login.switchOn);
    m_launchStatus->setText(login.text);
    m_launchStatus->setColor(login.role == StatusTextRole::orange ? NamedColor::orange
                                                                  : NamedColor::secondary);
    showError(m_launchError, m_launchAtLogin.lastError());

    m_dockSwitch->setChecked(m_appVisibility.showDockIcon());
    m_dockDescription->setText(dockVisibilityDescription(m_appVisibility.showDockIcon()));
    showError(m_dockError, m_appVisibility.lastError());

    if (m_notifications) {
        m_notifySwitch->setChecked(m_notifications->enabled());
        showError(m_notifyError, m_notifications->lastError());
    }
}

} // namespace brenvik
