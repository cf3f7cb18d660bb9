#pragma once
// The General Polygon Clipper interface that the statistics are written against:
// polygons of contours with hole flags, clipped by difference, intersection, exclusive
// or and union. Memory follows GPC: gpc_add_contour copies what it is given, results are
// allocated by gpc_polygon_clip, and gpc_free_polygon frees a polygon's contents.
//
// Behind it is Clipper. Input contours are read even-odd, as GPC reads them (hole flags
// of the input are not consulted); result contours carry hole flags.

#include "kplan/Export.h"

typedef enum { GPC_DIFF, GPC_INT, GPC_XOR, GPC_UNION } gpc_op;

typedef struct {
    double x;
    double y;
} gpc_vertex;

typedef struct {
    int num_vertices;
    gpc_vertex* vertex;
} gpc_vertex_list;

typedef struct {
    int num_contours;
    int* hole;
    gpc_vertex_list* contour;
} gpc_polygon;

// Appends a copy of the contour to the polygon, with its hole flag.
KPLAN_API void gpc_add_contour(gpc_polygon* polygon, gpc_vertex_list* contour, int hole);

// result = subject <op> clip. The result's previous contents are not freed: pass an
// empty polygon or one already freed.
KPLAN_API void gpc_polygon_clip(gpc_op set_operation, gpc_polygon* subject_polygon,
                                gpc_polygon* clip_polygon, gpc_polygon* result_polygon);

// Frees the contours and leaves an empty polygon.
KPLAN_API void gpc_free_polygon(gpc_polygon* polygon);
