#pragma once
// The picture of a loaded drawing, shared by "kplan render" and "kplan stats --map".
#include <string>

#include "host/arx/dbmain.h"
#include "render/PlanPicture.h"

namespace kplan::cli {

struct PlanSummary {
    std::size_t parcels = 0, classes = 0;
};

// Draws the plan of the loaded drawing (its planned parcels, or with status its
// current-status ones) to out, with boundary (null for none) as the scope line and the
// table beside the map when given. Parcels whose outline cannot be read are counted in a
// warning on stderr. False with a message naming the file.
bool drawPlan(AcDbDatabase& database, const std::string& drawingPath, const std::string& out,
              AcDbObjectId boundary, bool status, const render::BalanceTable* table,
              render::PictureOptions options, std::string& error, PlanSummary* summary = nullptr);

}  // namespace kplan::cli
