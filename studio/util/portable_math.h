#pragma once

/// Elementary functions from IEEE 754 operations alone. Those of the C library
/// differ in their last place between processors with and without fused
/// multiply-add, and a picture is to be the same on all. Within some units in the
/// last place of the true value. Any thread.
namespace tavora::studio::portable {

/// x^(1/3) and x^(1/5); 0 unless x > 0, infinity for infinity.
double cubeRoot(double x);
double fifthRoot(double x);

/// Of positive, finite numbers.
double log2(double x);

/// For -1000 to 1000.
double exp2(double x);

/// x^n for n of 0 and more.
double power(double x, unsigned n);

/// Angles in radians, up to a million either way.
double sin(double angle);
double cos(double angle);
double tan(double angle);

/// Of -1 to 1, in radians, within 3e-8; beyond these as at them.
double arcCosine(double x);

}  // namespace tavora::studio::portable
