// Paints primitives of a drawing.
#pragma once

#include <cstddef>

#include "platform/canvas.h"

class QPainter;
class QRectF;

// Those from `begin` up to `end`, in order; a coordinate names the pixel whose corner it is.
void PaintPrimitives(QPainter& painter, const Drawing& drawing, std::size_t begin, std::size_t end);

// What a primitive covers at most, with some room.
QRectF BoundsOf(const Primitive& primitive);
