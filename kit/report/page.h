#ifndef KIT_REPORT_PAGE_H
#define KIT_REPORT_PAGE_H

#include "kit/report/report.h"

namespace kit {

/// The report as a page with as many details as its size allows.
std::string page_of(const Report& report);

}  // namespace kit

#endif
