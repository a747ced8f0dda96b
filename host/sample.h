/* The record that describes one shaded sample. The host fills it, a shader
 * rewrites its colour, luminosity, diffuse, specular and transparency.
 *
 * World and object space: y is up. Lengths are scene units (metres). Colours
 * and levels are display-referred, 0 to 1 for what a screen can show. Unit
 * vectors are of length 1 unless they could not be formed. */
#ifndef HOST_SAMPLE_H
#define HOST_SAMPLE_H

#include "host/types.h"

/* Illumination of `position` (world space) by `light`. Returns nonzero when the
 * light reaches it, with the unit direction in which the light travels (from
 * the light towards the position) and the colour that arrives, shadows and
 * falloff counted in; 0 when the light does not reach it, the outputs then
 * unspecified. [render] during an evaluation. */
typedef int HostIlluminate(HostItemId light, const double position[3], double direction[3],
                           double color[3]);

struct HostSample;

/* Traces a ray from `position` along the unit vector `direction` (world space)
 * and shades the first surface hit into `hit`, which the caller owns. Returns
 * the distance to the hit, or -1 when nothing was hit (`hit` is then
 * unspecified). May evaluate the calling shader again, inside the outer
 * evaluation. [render] during an evaluation. */
typedef double HostTraceAndShade(const double position[3], const double direction[3],
                                 struct HostSample* hit);

typedef struct HostSample {
    int32_t reserved0[2];
    double objectPosition[3]; /* in the object's own space */
    double worldPosition[3];
    double geometricNormal[3]; /* unit, world space, of the flat polygon, towards the viewer */
    double spotSize;           /* diameter of the sample's footprint at the hit, scene units */
    double raySource[3];       /* world position where the viewing ray starts */
    double rayLength;          /* scene units from raySource to worldPosition */
    double cosine;             /* between the world normal and the direction to the viewer, 0..1 */
    double objectTransform[9]; /* rows: world to object, for directions */
    double worldTransform[9];  /* rows: object to world, for directions */
    HostItemId objectId;
    int32_t polygonNumber; /* counted from 0 within the object */
    double worldNormal[3]; /* unit, interpolated, towards the viewer on double-sided surfaces */
    double color[3];       /* the surface's own colour */
    double luminosity;     /* share of the colour that shows without light */
    double diffuse;        /* share of the light that the colour scatters */
    double specular;       /* strength of the host's glossy reflection of lights */
    double reserved352;
    double transparency; /* 0 opaque .. 1 clear */
    double reserved368[2];
    HostIlluminate* illuminate;
    void* reserved388[2];
    HostTraceAndShade* traceAndShade;
    int32_t reserved400[9];
    double bumpHeight;
    int32_t reserved444[10];
    HostPointId vertexIds[4];    /* the polygon's vertices; null beyond the third of a triangle */
    float vertexWeights[4];      /* barycentric, sum 1 */
    float vertexPositions[4][3]; /* world space */
    HostPolygonId polygonId;
    int32_t reserved568[62];
} HostSample;

HOST_ASSERT_OFFSET_32(HostSample, objectPosition, 8);
HOST_ASSERT_OFFSET_32(HostSample, worldPosition, 32);
HOST_ASSERT_OFFSET_32(HostSample, geometricNormal, 56);
HOST_ASSERT_OFFSET_32(HostSample, spotSize, 80);
HOST_ASSERT_OFFSET_32(HostSample, raySource, 88);
HOST_ASSERT_OFFSET_32(HostSample, rayLength, 112);
HOST_ASSERT_OFFSET_32(HostSample, cosine, 120);
HOST_ASSERT_OFFSET_32(HostSample, objectTransform, 128);
HOST_ASSERT_OFFSET_32(HostSample, worldTransform, 200);
HOST_ASSERT_OFFSET_32(HostSample, objectId, 272);
HOST_ASSERT_OFFSET_32(HostSample, polygonNumber, 276);
HOST_ASSERT_OFFSET_32(HostSample, worldNormal, 280);
HOST_ASSERT_OFFSET_32(HostSample, color, 304);
HOST_ASSERT_OFFSET_32(HostSample, luminosity, 328);
HOST_ASSERT_OFFSET_32(HostSample, diffuse, 336);
HOST_ASSERT_OFFSET_32(HostSample, specular, 344);
HOST_ASSERT_OFFSET_32(HostSample, transparency, 360);
HOST_ASSERT_OFFSET_32(HostSample, illuminate, 384);
HOST_ASSERT_OFFSET_32(HostSample, traceAndShade, 396);
HOST_ASSERT_OFFSET_32(HostSample, bumpHeight, 436);
HOST_ASSERT_OFFSET_32(HostSample, vertexIds, 484);
HOST_ASSERT_OFFSET_32(HostSample, vertexWeights, 500);
HOST_ASSERT_OFFSET_32(HostSample, vertexPositions, 516);
HOST_ASSERT_OFFSET_32(HostSample, polygonId, 564);
HOST_ASSERT_SIZE_32(HostSample, 816);

#endif
