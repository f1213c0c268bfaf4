#pragma once

#include <QObject>
#include <memory>

namespace brenvik {

// regular: Brenvik's windows show in the taskbar like any window;
// accessory: they stay out of the taskbar and pager (the tray icon remains).
enum class ActivationPolicyKind { regular, accessory };

// The switch of the activation policy. The desktop may refuse it.
class ActivationPolicy {
public:
    virtual ~ActivationPolicy() = default;
    // True when the desktop accepted the policy.
    [[nodiscard]] virtual bool setPolicy(ActivationPolicyKind policy) = 0;
    // False where the desktop has no way at all to keep a window out of the
    // taskbar (Wayland), so that waiting or retrying cannot help.
    [[nodiscard]] virtual bool desktopCanHide() const { return true; }
    // Brings Brenvik's visible windows to the front.
    virtual void activate() = 0;
};

// The X11 form: _NET_WM_STATE_SKIP_TASKBAR and _NET_WM_STATE_SKIP_PAGER on
// every top-level window, also on windows shown later. Refuses to hide on other
// platforms (Wayland, offscreen), where windows always show, and under window
// managers that do not list the hint in _NET_SUPPORTED.
class TaskbarActivationPolicy : public QObject, public ActivationPolicy {
    Q_OBJECT

public:
    explicit TaskbarActivationPolicy(QObject* parent = nullptr);
    ~TaskbarActivationPolicy() override;

    [[nodiscard]] bool setPolicy(ActivationPolicyKind policy) override;
    [[nodiscard]] bool desktopCanHide() const override { return m_x11 != nullptr; }
    void activate() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct X11;
    std::unique_ptr<X11> m_x11; // none when not on X11
    ActivationPolicyKind m_policy = ActivationPolicyKind::regular;
};

} // namespace brenvik
