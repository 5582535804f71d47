#include "commandtext.h"

#include "fixedmath.h"

#include <array>
#include <cstdio>
#include <cstring>

namespace controller {

namespace {

// How the argument words are shown, a letter each: p two signed 16-bit numbers, d a signed number,
// x hexadecimal; o options, l a pair with options in its low half, h one with options in its high
// half. Words beyond the letters are hexadecimal.
struct ArgumentFormat {
    Command command;
    const char* letters;
};

constexpr ArgumentFormat argumentFormats[] = {
    {Command::Text, "ph"},
    {Command::Button, "pph"},
    {Command::Keys, "pph"},
    {Command::Toggle, "ppl"},
    {Command::Number, "phd"},
    {Command::Gauge, "phpp"},
    {Command::Clock, "phpp"},
    {Command::Dial, "phd"},
    {Command::Slider, "ppld"},
    {Command::Progress, "ppld"},
    {Command::Scrollbar, "pplp"},
    {Command::Track, "ppd"},
    {Command::Spinner, "pp"},
    {Command::Sketch, "ppxd"},
    {Command::Gradient, "pxpx"},
    {Command::GradientA, "pxpx"},
    {Command::SetBitmap, "xpd"},
    {Command::Snapshot2, "xxpp"},
    {Command::GetPoint, "pxx"},
    {Command::AnimXy, "dp"},
    {Command::AnimFrame, "pxd"},
    {Command::MemCpy, "xxd"},
    {Command::Append, "xd"},
    {Command::MemZero, "xd"},
    {Command::MemWrite, "xd"},
    {Command::MemSet, "xdd"},
    {Command::MemCrc, "xdx"},
    {Command::Translate, "xx"},
    {Command::SetFont, "dx"},
    {Command::SetFont2, "dxd"},
    {Command::RomFont, "dd"},
    {Command::Rotate, "d"},
    {Command::BitmapTransform, "dddddddddddddx"},
    {Command::TouchTransform, "dddddddddddddx"},
    {Command::LoadImage, "xo"},
    {Command::PlayVideo, "o"},
    {Command::Inflate2, "xo"},
};

const char* lettersOf(Command command) {
    for (const ArgumentFormat& format : argumentFormats) {
        if (format.command == command) {
            return format.letters;
        }
    }
    return "";
}

// An option, and of which commands it is one.
struct Option {
    std::uint32_t bits;
    const char* name;
    std::array<Command, 6> commands; // DlStart, which has none, stands for no more
    GenerationSet generations = everyGeneration;
};

// Those of several bits stand before those of one.
constexpr Option options[] = {
    {0x0600,
     "OPT_CENTER",
     {Command::Text, Command::Button, Command::Keys, Command::Toggle, Command::Number}},
    {0xC000, "OPT_NOHANDS", {Command::Clock}},
    {0x0100,
     "OPT_FLAT",
     {Command::Button, Command::Keys, Command::Toggle, Command::Gauge, Command::Clock,
      Command::Dial}},
    {0x0100, "OPT_FLAT", {Command::Slider, Command::Progress, Command::Scrollbar}},
    {0x0100, "OPT_SIGNED", {Command::Number}},
    {0x0200,
     "OPT_CENTERX",
     {Command::Text, Command::Button, Command::Keys, Command::Toggle, Command::Number}},
    {0x0400,
     "OPT_CENTERY",
     {Command::Text, Command::Button, Command::Keys, Command::Toggle, Command::Number}},
    {0x0800, "OPT_RIGHTX", {Command::Text, Command::Number}},
    {0x1000, "OPT_NOBACK", {Command::Gauge, Command::Clock}},
    {0x1000, "OPT_FORMAT", {Command::Text, Command::Button, Command::Toggle}, e3Only},
    {0x2000, "OPT_NOTICKS", {Command::Gauge, Command::Clock}},
    {0x2000, "OPT_FILL", {Command::Text}, e3Only},
    {0x4000, "OPT_NOPOINTER", {Command::Gauge}},
    {0x4000, "OPT_NOHM", {Command::Clock}},
    {0x8000, "OPT_NOSECS", {Command::Clock}},
    {0x0001, "OPT_MONO", {Command::LoadImage, Command::PlayVideo}},
    {0x0002, "OPT_NODL", {Command::LoadImage}},
    {0x0004, "OPT_NOTEAR", {Command::PlayVideo}, e2AndE3},
    {0x0008, "OPT_FULLSCREEN", {Command::LoadImage, Command::PlayVideo}, e2AndE3},
    {0x0010, "OPT_MEDIAFIFO", {Command::LoadImage, Command::PlayVideo, Command::Inflate2}, e2AndE3},
    {0x0020, "OPT_SOUND", {Command::PlayVideo}, e2AndE3},
    {0x0040, "OPT_FLASH", {Command::LoadImage, Command::PlayVideo, Command::Inflate2}, e3Only},
    {0x0080, "OPT_OVERLAY", {Command::PlayVideo}, e3Only},
};

bool isOptionOf(const Option& option, Command command) {
    for (const Command owner : option.commands) {
        if (owner == command && owner != Command::DlStart) {
            return true;
        }
    }
    return false;
}

std::string hexadecimal(std::uint32_t value) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "0x%X", value);
    return text.data();
}

std::string optionsText(Generation generation, Command command, std::uint32_t bits) {
    std::string text;
    for (const Option& option : options) {
        if ((bits & option.bits) == option.bits && isOptionOf(option, command) &&
            contains(option.generations, generation)) {
            text += (text.empty() ? "" : "|") + std::string(option.name);
            bits &= ~option.bits;
        }
    }
    if (bits == 0) {
        return text.empty() ? "0" : text;
    }
    return text.empty() ? hexadecimal(bits) : text + '|' + hexadecimal(bits);
}

std::string argumentText(Generation generation, Command command, std::uint32_t word, char letter) {
    const auto signedText = [](int number) { return std::to_string(number); };
    switch (letter) {
    case 'p':
        return signedText(lowHalf(word)) + ' ' + signedText(highHalf(word));
    case 'l':
        return optionsText(generation, command, word & 0xFFFFU) + ' ' + signedText(highHalf(word));
    case 'h':
        return signedText(lowHalf(word)) + ' ' + optionsText(generation, command, word >> 16U);
    case 'o':
        return optionsText(generation, command, word);
    case 'd':
        return signedText(signExtend(word, 32));
    default:
        return hexadecimal(word);
    }
}

} // namespace

std::string commandText(Generation generation, const CommandInfo& command,
                        const std::vector<std::uint32_t>& words) {
    std::string text = std::string("CMD_") + command.name;
    const char* letters = lettersOf(command.command);
    const std::size_t lettered = std::strlen(letters);
    for (std::size_t i = 0; i < words.size(); ++i) {
        const char letter = i < lettered ? letters[i] : 'x';
        text += ' ' + argumentText(generation, command.command, words[i], letter);
    }
    return text;
}

} // namespace controller
