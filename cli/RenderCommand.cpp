// "kplan render DRAWING -o plan.png|svg|pdf": the land-use plan as a picture, with its
// legend, labels and, with --table, the balance table beside it.
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

#include "cli/Balance.h"
#include "cli/ClassNames.h"
#include "cli/Commands.h"
#include "cli/DrawPlan.h"
#include "cli/Drawing.h"
#include "cli/Messages.h"
#include "cli/OptionValues.h"
#include "host/db/Utf8Path.h"
#include "record/DKBJXDInfo.h"
#include "render/PlanPicture.h"
#include "render/PlanScene.h"
#include "report/PlanReport.h"
#include "stats/BoundaryClip.h"

namespace kplan::cli {

namespace {

struct RenderArgs {
    std::string drawing, out;
    double width = 2000;
    std::string boundary = "auto";
    bool status = false;
    std::string labels = "both";
    bool table = false;
    StandardOptions standard;
};

bool parseLabels(const std::string& text, render::LabelMode& mode) {
    if (text == "number") {
        mode = render::LabelMode::Number;
    } else if (text == "class") {
        mode = render::LabelMode::Class;
    } else if (text == "both") {
        mode = render::LabelMode::Both;
    } else if (text == "none") {
        mode = render::LabelMode::None;
    } else {
        return false;
    }
    return true;
}

int runRender(const RenderArgs& args) {
    render::PictureFormat format;
    std::string error;
    if (!render::pictureFormatOf(args.out, format, error)) {
        std::cerr << "kplan: " << error << "\n";
        return 2;
    }
    render::PictureOptions options;
    if (!parseLabels(args.labels, options.labels)) {
        std::cerr << "kplan: --labels " << args.labels
                  << ": expected number, class, both or none\n";
        return 2;
    }
    if (!(args.width >= 200 && args.width <= 20000)) {
        std::cerr << "kplan: --width " << args.width << ": expected 200 to 20000 pixels\n";
        return 2;
    }
    options.width = args.width;
    Format unused;
    LoadedDrawing drawing;
    std::string path;
    if (int failed = openForReport(args.drawing, "table", args.standard, unused, drawing, path))
        return failed;
    AcDbDatabase& database = *drawing.database();
    AcDbObjectId boundary;
    if (!chooseBoundary(path, args.boundary, database, boundary, error)) {
        std::cerr << "kplan: " << error << "\n";
        return 1;
    }
    render::BalanceTable table;
    if (args.table) {
        // The table kplan stats prints with its defaults.
        stats::ClipSession session;
        report::PlanOptions plan;
        plan.currentOnly = args.status;
        report::Report tables;
        if (!report::buildPlanReport(report::findParcels(args.status), boundary, plan, tables,
                                     error)) {
            std::cerr << "kplan: " << error << "\n";
            return 2;
        }
        table = pictureTable(tables, false);
    }
    PlanSummary drawn;
    if (!drawPlan(database, path, args.out, boundary, args.status, args.table ? &table : nullptr,
                  options, error, &drawn)) {
        std::cerr << "kplan: " << error << "\n";
        return 1;
    }
    std::cout << "drew " << drawn.parcels << (drawn.parcels == 1 ? " parcel" : " parcels") << " of "
              << drawn.classes << (drawn.classes == 1 ? " class" : " classes") << ": " << args.out
              << "\n";
    return 0;
}

}  // namespace

bool drawPlan(AcDbDatabase& database, const std::string& drawingPath, const std::string& out,
              AcDbObjectId boundary, bool status, const render::BalanceTable* table,
              render::PictureOptions options, std::string& error, PlanSummary* summary) {
    AcDbObjectIdArray parcels;
    if (status) {
        CDKBJXDInfo::GetAllXZYD(parcels);
    } else {
        CDKBJXDInfo::GetDkbj(parcels);
        parcels.append(olderGenerationParcels(database, parcels));
    }
    render::SceneOptions sceneOptions;
    sceneOptions.boundary = boundary;
    int unreadable = 0;
    render::PlanScene scene = render::collectScene(parcels, sceneOptions, &unreadable);
    scene.title = db::utf8Name(db::utf8Path(drawingPath).stem());
    if (scene.empty()) {
        error = drawingPath + ": no parcels, red lines or scope line to draw";
        return false;
    }
    options.table = table;
    if (!render::writePicture(scene, options, out, error)) return false;
    if (unreadable > 0) {
        warn() << "kplan: " << unreadable
               << (unreadable == 1 ? " parcel has an outline" : " parcels have outlines")
               << " that cannot be read and " << (unreadable == 1 ? "is" : "are") << " not drawn\n";
    }
    if (summary != nullptr) *summary = {scene.parcels.size(), scene.styles.size()};
    return true;
}

void addRenderCommand(CLI::App& app, int& exitCode) {
    auto* command = app.add_subcommand(
        "render", "Draw the land-use plan as a picture (PNG, SVG or PDF) with its legend");
    auto args = std::make_shared<RenderArgs>();
    command->add_option("DRAWING", args->drawing, "DXF file (default: the sample plan)")
        ->type_name(kDrawingValue);
    command->add_option("-o,--output", args->out, "picture to write: .png, .svg or .pdf")
        ->type_name(kFileValue)
        ->required();
    command->add_option("--width", args->width, "width in pixels (points for PDF and SVG)")
        ->capture_default_str();
    command
        ->add_option("--boundary", args->boundary,
                     "auto (the largest planning scope line), none, or a handle")
        ->capture_default_str();
    command->add_flag("--status", args->status,
                      "Draw the current-status parcels instead of the planned ones");
    offerChoices(command->add_option("--labels", args->labels, "number, class, both or none"),
                 {"number", "class", "both", "none"})
        ->capture_default_str();
    command->add_flag("--table", args->table, "Put the land-use balance table beside the map");
    // --table is the balance table here; the class table is --class-table.
    addStandardOptions(*command, args->standard, "--class-table");
    addReadOptions(*command, args->standard.recover, args->standard.codePage);
    command->callback([args, &exitCode] { exitCode = runRender(*args); });
}

}  // namespace kplan::cli
