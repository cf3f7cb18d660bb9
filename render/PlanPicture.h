#pragma once
// A plan drawn as a picture: the map of the scene (fills, pattern lines, boundaries,
// islands open, red lines, the scope line heavy with the outside dimmed, labels), a title,
// a north arrow, a scale bar of a round length, the legend of the classes present and,
// when given, a table beside the map. PNG through cairo's image surface, PDF through
// cairo's PDF surface (text as text), SVG written directly (text as <text>).
#include <string>
#include <vector>

#include "render/Canvas.h"
#include "render/PlanLayout.h"
#include "render/PlanScene.h"

namespace render {

enum class PictureFormat { Png, Svg, Pdf };

// The format of an output path by its extension (.png, .svg, .pdf, any case). False with
// a message naming the path and the extensions that work.
bool pictureFormatOf(const std::string& path, PictureFormat& format, std::string& error);

// Looks up the label points (FGetCenterPt) of the parcels that have room for a label at
// the layout's scale and do not know theirs yet; none when labels are off.
void findLabelPoints(PlanScene& scene, const PictureOptions& options, const PictureLayout& layout);

// Paints the laid-out picture; parcels without a known label point get no label.
void paintPicture(Canvas& canvas, const PlanScene& scene, const PictureOptions& options,
                  const PictureLayout& layout);

// Finds the font, lays out, finds the label points needed and writes the picture to
// path in the format of its extension, under a temporary name renamed when complete: on
// failure nothing is left and an existing file is untouched. False with a message naming
// the file (or the missing font's package).
bool writePicture(PlanScene& scene, const PictureOptions& options, const std::string& path,
                  std::string& error, PictureLayout* layout = nullptr);

}  // namespace render
