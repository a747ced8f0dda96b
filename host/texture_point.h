/* The record that describes a point to the host's texture evaluator. Spaces
 * and units are those of HostSample. */
#ifndef HOST_TEXTURE_POINT_H
#define HOST_TEXTURE_POINT_H

#include "host/types.h"

typedef struct HostTexturePoint {
    double objectPosition[3];
    double worldPosition[3];
    double objectScale[3]; /* of the texture's first layer, HOST_LAYER_SCALE */
    double geometricNormal[3];
    double worldNormal[3];
    double rayDirection[3]; /* unit, from the ray source towards the point */
    double bumpHeight;
    double textureValue;
    double spotSize;
    double raySource[3];
    double rayLength;
    double cosine;
    double objectTransform[9];
    double worldTransform[9];
    HostItemId objectId;
    HostSurfaceId surfaceId;
    HostPointId vertexIds[4];
    float vertexWeights[4];
    float vertexPositions[4][3];
    int32_t polygonNumber;
    int32_t reserved444[2];
    int32_t context; /* 0: ordinary shading, as opposed to a preview */
    int32_t reserved456[5];
    HostPolygonId polygonId;
} HostTexturePoint;

HOST_ASSERT_OFFSET_32(HostTexturePoint, objectPosition, 0);
HOST_ASSERT_OFFSET_32(HostTexturePoint, worldPosition, 24);
HOST_ASSERT_OFFSET_32(HostTexturePoint, objectScale, 48);
HOST_ASSERT_OFFSET_32(HostTexturePoint, geometricNormal, 72);
HOST_ASSERT_OFFSET_32(HostTexturePoint, worldNormal, 96);
HOST_ASSERT_OFFSET_32(HostTexturePoint, rayDirection, 120);
HOST_ASSERT_OFFSET_32(HostTexturePoint, bumpHeight, 144);
HOST_ASSERT_OFFSET_32(HostTexturePoint, textureValue, 152);
HOST_ASSERT_OFFSET_32(HostTexturePoint, spotSize, 160);
HOST_ASSERT_OFFSET_32(HostTexturePoint, raySource, 168);
HOST_ASSERT_OFFSET_32(HostTexturePoint, rayLength, 192);
HOST_ASSERT_OFFSET_32(HostTexturePoint, cosine, 200);
HOST_ASSERT_OFFSET_32(HostTexturePoint, objectTransform, 208);
HOST_ASSERT_OFFSET_32(HostTexturePoint, worldTransform, 280);
HOST_ASSERT_OFFSET_32(HostTexturePoint, objectId, 352);
HOST_ASSERT_OFFSET_32(HostTexturePoint, surfaceId, 356);
HOST_ASSERT_OFFSET_32(HostTexturePoint, vertexIds, 360);
HOST_ASSERT_OFFSET_32(HostTexturePoint, vertexWeights, 376);
HOST_ASSERT_OFFSET_32(HostTexturePoint, vertexPositions, 392);
HOST_ASSERT_OFFSET_32(HostTexturePoint, polygonNumber, 440);
HOST_ASSERT_OFFSET_32(HostTexturePoint, context, 452);
HOST_ASSERT_OFFSET_32(HostTexturePoint, polygonId, 476);

#endif
