#pragma once

#include "displaymodule.h"

#include <QByteArray>
#include <QFile>
#include <QString>

namespace panel {

// What happens around the controller and stands in a trace beside what crosses its wires.
enum class TraceEvent { Request, Reply, ScriptLine, Fault };

// Takes down what happens on the instrument, in the order of the panel's time.
class Trace : public controller::Observer {
public:
    bool open(const QString& path);
    // Writes what is left. False when not all of it could be written, now or before.
    virtual bool finish();
    QString errorString() const { return m_file.errorString(); }

    // To be called with the module locked, as its own calls are.
    virtual void note(TraceEvent event, const QString& text, controller::Nanoseconds now) = 0;

    // What tells of the fingers; everything else comes as to any observer.
    Watcher& fingers() { return m_fingers; }

protected:
    void write(const QByteArray& text);
    virtual void touched(int x, int y, controller::Nanoseconds now) = 0;
    virtual void released(controller::Nanoseconds now) = 0;

private:
    class Fingers : public Watcher {
    public:
        explicit Fingers(Trace& trace) : m_trace(trace) {}
        void touched(int x, int y, controller::Nanoseconds now) override {
            m_trace.touched(x, y, now);
        }
        void released(controller::Nanoseconds now) override { m_trace.released(now); }

    private:
        Trace& m_trace;
    };

    Fingers m_fingers{*this};
    QFile m_file;
    bool m_failed = false;
};

} // namespace panel
