#pragma once

/// Elementary functions with the same results, bit by bit, on every processor, so that pictures
/// are the same too. Those of the C library differ in the last place between processors with
/// and without fused multiply-add. Most of these are SLEEF's functions without fused
/// multiply-add (`cinz`, in plain C), within 3.5 units in the last place. Any thread.
namespace tavora::studio::deterministic {

/// x^(1/3) and x^(1/5), within one unit in the last place; 0 for x <= 0 and NaN, infinity for
/// infinity.
double cubeRoot(double x);
double fifthRoot(double x);

/// x^n by repeated multiplication; the rounding errors of all multiplications accumulate.
double power(double x, unsigned n);

double log2(double x);
double exp2(double x);

/// Of an angle in radians; NaN for infinity.
double sin(double angle);
double cos(double angle);
double tan(double angle);

/// The arc cosine of x, which is clamped to -1..1, in radians.
double arcCosine(double x);

}  // namespace tavora::studio::deterministic
