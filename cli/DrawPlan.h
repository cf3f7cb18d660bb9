#pragma once
// The picture of a loaded drawing, shared by "kplan render" and "kplan stats --map".
#include <string>

#include "host/arx/dbmain.h"
#include "render/PlanPicture.h"

namespace kplan::cli {

// Draws the plan of the loaded drawing (its planned parcels, or with status its
// current-status ones) to out, within the boundary chosen as --boundary does, with the
// balance table beside it when withTable. False with a message naming the file.
bool drawPlan(AcDbDatabase& database, const std::string& drawingPath, const std::string& out,
              const std::string& boundaryChoice, bool status, bool withTable,
              render::PictureOptions options, std::string& error);

}  // namespace kplan::cli
