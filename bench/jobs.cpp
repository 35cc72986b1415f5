#include "bench/jobs.h"

namespace bench {

std::vector<Job> all_jobs() {
  return {save_sample(),
          read_sample(),
          scan(),
          open_row(),
          write_payload(),
          read_payload(),
          add_revision(),
          add_after_100(),
          add_after_1000(),
          add_after_10000(),
          read_revision(),
          cached_revision(),
          list_revisions(),
          list_definitions(),
          resolve_path(),
          slow_name(),
          scan_memory(),
          integers_to_array(),
          integers_to_vector(),
          bytes_to_array(),
          bytes_to_vector(),
          texts_to_array(),
          texts_to_vector(),
          read_xml(),
          encipher_secret(),
          decipher_secret(),
          parse_schedule(),
          parse_schedule_by_regex(),
          parse_schedule_by_hand(),
          parse_range(),
          parse_fixed_range(),
          parse_range_by_regex(),
          parse_range_by_hand()};
}

Tally OurWork::statements_of_one() {
  TallyObserver observer;
  db_.set_observer(&observer);
  run();
  db_.set_observer(nullptr);
  return observer.tally;
}

}  // namespace bench
