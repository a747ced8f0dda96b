#pragma once

/// Elementary functions that give the same bits on every processor. Those of the C
/// library differ in their last place between processors with and without fused
/// multiply-add, and a picture is to be the same on all. Most are SLEEF's that never
/// fuse (`cinz`, in plain C), up to 3.5 units in the last place from the true value. Any
/// thread.
namespace tavora::studio::deterministic {

/// x^(1/3) and x^(1/5), within a unit in the last place; 0 unless x > 0, infinity for
/// infinity.
double cubeRoot(double x);
double fifthRoot(double x);

/// x^n, off by up to a unit in the last place for each multiplication and those before it.
double power(double x, unsigned n);

double log2(double x);
double exp2(double x);

/// Angles in radians; NaN for infinity.
double sin(double angle);
double cos(double angle);
double tan(double angle);

/// In radians; beyond -1 and 1 as at them.
double arcCosine(double x);

}  // namespace tavora::studio::deterministic
