#pragma once

// Which controller generation the registry is set to.
bool isEve1();
bool isEve3();
