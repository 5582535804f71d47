#pragma once

#include "bitmapmatrix.h"
#include "commandset.h"
#include "machine.h"
#include "threepoints.h"

namespace controller {

// The bitmap matrix, transforms through three points, and the turned picture.
class MatrixCommands {
public:
    explicit MatrixCommands(Machine& machine) : m_machine(machine) {}
    void addTo(CommandSet& set);
    void reset() { m_matrix.loadIdentity(); }

private:
    void loadIdentity(const Call& call);
    void translate(const Call& call);
    void scale(const Call& call);
    void rotate(const Call& call);
    void rotateAround(const Call& call);
    void setMatrix(const Call& call);
    void getMatrix(const Call& call);
    void bitmapTransform(const Call& call);
    void touchTransform(const Call& call);
    void setRotate(const Call& call);
    void putTransform(const Affine& transform);

    Machine& m_machine;
    BitmapMatrix m_matrix;
};

// The touch transform's six registers.
Affine touchTransformIn(const Registers& registers);
void setTouchTransform(Registers& registers, const Affine& transform);

} // namespace controller
