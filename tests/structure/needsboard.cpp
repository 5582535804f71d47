#include "App_Common.h"

// Needs the board through the layer on it alone.
int main() {
    Gpu_Hal_Context_t host;
    App_Common_Init(&host);
}
