#pragma once

namespace tavora {

/// Vectors are three doubles: x, y, z, or red, green, blue. No state.

/// Divides `v` by its length, unless that is not greater than 0.
void normalize(double v[3]);

/// Dot product, summed from x to z.
double ddot(const double a[3], const double b[3]);

/// out = a - b.
void dsub(const double a[3], const double b[3], double out[3]);

/// Square of the length.
double dlenSquared(const double v[3]);

/// Length.
double dlen(const double v[3]);

/// Distance of two points, rounded to single precision.
double ddist(const double a[3], const double b[3]);

/// 0 below e0, else 1 from e1 on, else the cubic 3t^2 - 2t^3 in between.
/// Equal edges make a step and never divide by zero.
double smoothstep(double e0, double e1, double x);

/// One channel `v` of the colour r, g, b, drawn towards the colour's grey mean:
/// s = 1 keeps it, s = 0 gives the mean. Products of two arguments, their sums
/// and the mean are formed in single precision, the blend in double.
double saturate(float v, float r, float g, float b, float s);

}  // namespace tavora
