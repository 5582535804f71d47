#pragma once

#include <QMutex>
#include <QStringList>
#include <QtGlobal>

// Collects what is logged, from any thread, while it lives. One at a time.
class DebugLog {
public:
    DebugLog() {
        s_current = this;
        m_previous = qInstallMessageHandler(collect);
    }
    ~DebugLog() {
        qInstallMessageHandler(m_previous);
        s_current = nullptr;
    }
    DebugLog(const DebugLog&) = delete;
    DebugLog& operator=(const DebugLog&) = delete;

    // The messages so far of the default category and of debug level, each as it would be printed;
    // anything else has its category and level in front and so never passes for one of them.
    QStringList messages() const {
        const QMutexLocker lock(&m_mutex);
        return m_messages;
    }

private:
    static void collect(QtMsgType type, const QMessageLogContext& context, const QString& text) {
        const QMutexLocker lock(&s_current->m_mutex);
        const bool usual = type == QtDebugMsg && qstrcmp(context.category, "default") == 0;
        s_current->m_messages << (usual ? text
                                        : QStringLiteral("[%1 %2] %3")
                                              .arg(QLatin1String(context.category))
                                              .arg(static_cast<int>(type))
                                              .arg(text));
    }

    inline static DebugLog* s_current = nullptr;

    mutable QMutex m_mutex;
    QStringList m_messages;
    QtMessageHandler m_previous = nullptr;
};
