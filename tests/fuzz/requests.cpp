// Requests to the measurement server, a line each; a time in milliseconds passes before each.
#include "input.h"
#include "instrument.h"

#include <QJsonDocument>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    server::Instrument instrument(input.byte());
    double now = 0;
    while (!input.atEnd()) {
        now += input.byte() / 1000.0;
        QByteArray line;
        for (char next = static_cast<char>(input.byte()); next != '\n' && !input.atEnd();
             next = static_cast<char>(input.byte())) {
            line += next;
        }
        const QByteArray reply = instrument.answer(line, now);
        fuzz::require(reply.isEmpty() || reply.endsWith('\n'));
        fuzz::require(!reply.startsWith('{') || QJsonDocument::fromJson(reply).isObject());
        fuzz::require(instrument.params().timeConst >= 0.01 &&
                      instrument.params().timeConst <= 10.0);
    }
    return 0;
}
