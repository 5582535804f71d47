// Session scripts.
#include "script.h"

#include "input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString text =
        QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const panel::script::Script script = panel::script::parse(text, QStringLiteral("fuzz"));
    int line = 0;
    for (const panel::script::Statement& statement : script.statements) {
        fuzz::require(statement.line > line);
        line = statement.line;
    }
    return 0;
}
