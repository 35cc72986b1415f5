/// Pieces of a page that its parts share.
///
/// Part of the command.
#pragma once

#include <string>
#include <vector>

#include "tools/spc/report/markup.h"

namespace spc::report_page {

/// A table that scrolls within its own box where it is wider than the page.
class TableWriter {
 public:
  TableWriter(Markup& page, const std::string& label, const std::vector<std::string>& headings);
  /// The first cell heads its row. Cells that begin like a number stand at the right.
  void row(const std::vector<std::string>& cells);
  void end();

 private:
  Markup& page_;
};

/// "Friday 15 March 2024".
std::string long_date(double day_number);
/// "Fri 15 Mar 2024, 10:30".
std::string short_moment(double day_number);

}  // namespace spc::report_page
