#include "gis/GisSession.h"

#include <cpl_error.h>
#include <gdal.h>

namespace gis {

Session::Session() {
    static const bool registered = [] {
        GDALAllRegister();
        return true;
    }();
    (void)registered;
    CPLPushErrorHandler(CPLQuietErrorHandler);
    CPLErrorReset();
}

Session::~Session() {
    CPLPopErrorHandler();
}

}  // namespace gis
