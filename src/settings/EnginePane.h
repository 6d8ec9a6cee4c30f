#pragma once

#include "settings/Health.h"

#include <QWidget>

QT_BEGIN_NAMESPACE
class QVBoxLayout;
QT_END_NAMESPACE

namespace tuppi {

class ElidedLabel;
class WrapLabel;

/// The check of the engine's installation.
class EnginePane : public QWidget
{
    Q_OBJECT
public:
    explicit EnginePane(QWidget *parent = nullptr);

    void setSummary(const ToneText &summary);
    void setReport(const HealthReport &report);

Q_SIGNALS:
    /// "refreshHealth" or "openInstallLog".
    void command(const QString &action);

private:
    WrapLabel *m_summary;
    QVBoxLayout *m_list = nullptr;
};

} // namespace tuppi
