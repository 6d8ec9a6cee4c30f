#pragma once

#include "settings/L.h"

#include <QCoreApplication>
#include <QTemporaryFile>

/// Installs translations for as long as it lives.
class Translated
{
public:
    explicit Translated(const QByteArray &json)
    {
        m_ready = m_file.open() && m_file.write(json) == json.size() && m_file.flush()
            && m_table.loadTable(m_file.fileName()) && QCoreApplication::installTranslator(&m_table);
    }
    ~Translated() { QCoreApplication::removeTranslator(&m_table); }
    Q_DISABLE_COPY(Translated)
    bool isReady() const { return m_ready; }

private:
    QTemporaryFile m_file;
    tuppi::LocalTable m_table;
    bool m_ready = false;
};
