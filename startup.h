#pragma once

// Steps of the program's start.

class DataReader;
class ServiceManager;
struct Gpu_Hal_Context_t;

// Makes the client's records known to the meta-type system by name.
void registerRecords();

// Finds which controller generation is fitted and selects it in the registry.
void detectController();

// Tells the controller how the touch panel lies over the display.
void writeTouchTransform(Gpu_Hal_Context_t* host);

// Tries ten times to connect the client, with a second after each failure. Blocks for up to about
// 110 s, and tells `manager` of each attempt. True when connected.
bool connectToServer(DataReader& client, ServiceManager& manager);
