#pragma once

#include <string>

// The parts of the button row that the two measurement screens have in common, as listed.
namespace buttonrow {

inline const std::string taggedButtons = R"(TAG 4
BUTTON 429 8 40 40 font 27 FLAT ""
TAG 3
BUTTON 374 8 40 40 font 27 FLAT ""
TAG 2
BUTTON 319 8 40 40 font 27 FLAT ""
)";

inline const std::string optionsIcon = R"(BEGIN LINES
VERTEX2II (435,20) (463,20) (435,28) (463,28) (435,36) (463,36)
END
)";

// On a button whose face has the colour `face`.
inline std::string startIcon(const std::string& face) {
    return R"(COLOR_RGB 1DCC37
SCISSOR_SIZE 512 512
SCISSOR_XY 330 16
BEGIN EDGE_STRIP_A
VERTEX2II (332,39) (350,28)
COLOR_RGB )" +
           face + R"(
VERTEX2II (332,17)
END
SCISSOR_XY 0 0
COLOR_RGB 19190C
LINE_WIDTH 13
BEGIN LINE_STRIP
VERTEX2II (332,39) (350,28) (332,17) (332,39)
END
LINE_WIDTH 16
)";
}

inline std::string stopIcon(const std::string& face) {
    return "COLOR_RGB " + face + R"(
BEGIN RECTS
VERTEX2II (351,16) (328,40)
END
COLOR_RGB C60D0D
BEGIN RECTS
VERTEX2II (347,20) (332,36)
END
)";
}

inline const std::string heldRunButton = "FGCOLOR 007C9E\nBUTTON 319 8 40 40 font 27 FLAT \"\"\n";
inline const std::string heldOptionsButton =
    "FGCOLOR 007C9E\nBUTTON 429 8 40 40 font 27 FLAT \"\"\n" + optionsIcon;
inline const std::string heldOtherScreenButton =
    "FGCOLOR 007C9E\nBUTTON 374 8 40 40 font 27 FLAT \"\"\n";

} // namespace buttonrow
