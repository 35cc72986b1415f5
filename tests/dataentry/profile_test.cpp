// The profile cache and the look-ups around it.
//
// Plan
//   loading              no elements; labels only; sizes of 0; interleaved sequence; system labels left out; trimming;
//                        lists of identifiers; totals; unknown types; a failed load; a closed connection
//   keeping              fixed size asks nothing again; dynamic size reads anew; auto labels stay; clearing
//   auto labels          station and user; blanks; replaced in place; empty values; saving and its failures
//   look-ups             names of labels and their failures; system labels in order; profiles of a characteristic
//   engine               null; each failing call
#include "tests/dataentry/data_entry_fixture.h"

namespace {

using oldde::CProfileCache;
using test_support::code_of;
using test_support::DataEntryTest;
using test_support::failure_of;
using test_support::StatementLog;
using testing::ElementsAre;

class ProfileCache : public DataEntryTest {
 protected:
  long load(int profile, int station = 1, int user = 1) {
    return cache.load_from_db(engine.pointer(), db(), station, user, profile);
  }
  std::vector<std::string> elements() const {
    std::vector<std::string> texts;
    for (const auto& e : cache)
      texts.push_back((e.kind == 0 ? "c" : "l") + std::to_string(e.id));
    return texts;
  }
  std::vector<std::string> auto_labels() const {
    std::vector<std::string> texts;
    for (const auto& [label, value] : cache.auto_labels)
      texts.push_back(std::to_string(label) + "=" + value.GetString());
    return texts;
  }

  CProfileCache cache;
};

TEST_P(ProfileCache, a_profile_with_neither_characteristics_nor_labels_cannot_be_used) {
  plant.profile(9, {});
  EXPECT_EQ(load(9), result_code::bad_value);
  EXPECT_EQ(cache.profile_id, 0);
  EXPECT_EQ(load(999), result_code::bad_value) << "a profile that does not exist";
}

TEST_P(ProfileCache, a_profile_of_labels_only_loads_without_a_size) {
  EXPECT_EQ(load(3), 0);
  EXPECT_EQ(cache.profile_id, 3);
  EXPECT_EQ(cache.max_subgroup_size, 0);
  EXPECT_FALSE(cache.has_dynamic_size);
  EXPECT_EQ(cache.label_ids, "20,22");
  EXPECT_TRUE(cache.all_chars.IsEmpty());
}

TEST_P(ProfileCache, characteristics_of_size_0_make_a_profile_of_dynamic_size) {
  EXPECT_EQ(load(4), 0);
  EXPECT_TRUE(cache.has_dynamic_size);
  EXPECT_EQ(cache.max_subgroup_size, 0);
}

TEST_P(ProfileCache, sizes_of_0_beside_fixed_ones_keep_both_facts) {
  plant.profile(9, {{'c', 10}, {'c', 13}});
  EXPECT_EQ(load(9), 0);
  EXPECT_TRUE(cache.has_dynamic_size);
  EXPECT_EQ(cache.max_subgroup_size, 5);
}

TEST_P(ProfileCache, characteristics_and_labels_come_out_interleaved_in_one_sequence) {
  EXPECT_EQ(load(2), 0);
  EXPECT_THAT(elements(), ElementsAre("c10", "l21", "c11", "c12", "l20", "l22", "l23", "l30"));
}

TEST_P(ProfileCache, the_sequence_follows_seqno_and_not_the_order_of_the_rows) {
  plant.profile(9, {{'l', 20, 50}, {'c', 10, 40}, {'l', 22, 30}, {'c', 11, 20}});
  EXPECT_EQ(load(9), 0);
  EXPECT_THAT(elements(), ElementsAre("c11", "l22", "c10", "l20"));
}

TEST_P(ProfileCache, labels_that_the_system_fills_are_no_elements_and_get_auto_label_finds_exactly_those) {
  plant.profile(9, {{'a', 31, 30}, {'l', 20, 25}, {'a', 24, 20}, {'a', 23, 10}, {'c', 10, 5}});
  EXPECT_EQ(load(9), 0);
  EXPECT_THAT(elements(), ElementsAre("c10", "l20"));
  std::vector<int> labels;
  EXPECT_TRUE(oldde::get_auto_label(&db(), 9, labels));
  EXPECT_THAT(labels, ElementsAre(23, 24, 31));
}

TEST_P(ProfileCache, texts_lose_the_blanks_at_their_right_end_only) {
  plant.characteristic(40, "  Width  ", "VARIABLE  ", 2);
  plant.label(41, " Tool ", "PIECE ", "DYNAMIC  ");
  plant.profile(9, {{'c', 40}, {'l', 41}});
  EXPECT_EQ(load(9), 0);
  EXPECT_EQ(cache[0].name, "  Width");
  EXPECT_EQ(cache[0].type, "VARIABLE");
  EXPECT_EQ(cache[0].detail, "about   Width");
  EXPECT_EQ(cache[1].name, " Tool");
  EXPECT_EQ(cache[1].type, "PIECE");
  EXPECT_EQ(cache[1].detail, "DYNAMIC");
}

TEST_P(ProfileCache, lists_of_identifiers_follow_the_profile) {
  plant.characteristic(9, "Odd", "UNKNOWN", 2);
  plant.variable(8, "Height", 3);
  plant.profile(9, {{'c', 10}, {'c', 9}, {'c', 11}, {'c', 12}, {'l', 22}, {'c', 8}, {'l', 20}});
  EXPECT_EQ(load(9), 0);
  EXPECT_EQ(cache.all_chars, "10,9,11,12,8");
  EXPECT_EQ(cache.variable_chars, "10,8");
  EXPECT_EQ(cache.defect_chars, "11");
  EXPECT_EQ(cache.total_chars, "12");
  EXPECT_EQ(cache.label_ids, "22,20");
  EXPECT_EQ(cache.max_subgroup_size, 5);
}

TEST_P(ProfileCache, a_total_counts_as_size_1_and_its_size_is_not_asked) {
  plant.profile(9, {{'c', 12}});
  EXPECT_EQ(load(9), 0);
  EXPECT_EQ(cache.max_subgroup_size, 1);
  EXPECT_FALSE(cache.has_dynamic_size);
  EXPECT_EQ(engine.count("GetSubgroupSize"), 0);
}

TEST_P(ProfileCache, the_engine_is_asked_about_all_but_variables_labels_included) {
  EXPECT_EQ(load(2), 0);
  std::vector<std::string> asked;
  for (const std::string& call : engine.calls)
    if (call.starts_with("GetCharacteristicFlags")) asked.push_back(call.substr(23));
  EXPECT_THAT(asked, ElementsAre("21", "11", "12", "20", "22", "23", "30"));
  EXPECT_TRUE(cache[3].is_total);
  EXPECT_FALSE(cache[2].is_total);
}

TEST_P(ProfileCache, a_flag_of_a_label_is_kept_and_changes_nothing) {
  test_support::RecordingEngine own;
  own.flags[20] = {0, 1, 0};
  EXPECT_EQ(cache.load_from_db(own.pointer(), db(), 1, 1, 3), 0);
  EXPECT_TRUE(cache[0].is_total);
  EXPECT_EQ(cache.label_ids, "20,22");
  EXPECT_TRUE(cache.total_chars.IsEmpty());
}

TEST_P(ProfileCache, sizes_below_0_alone_make_a_profile_that_cannot_be_used) {
  test_support::RecordingEngine own;
  own.sizes[10] = -1;
  EXPECT_EQ(cache.load_from_db(own.pointer(), db(), 1, 1, 1), result_code::bad_value);
  EXPECT_EQ(cache.size(), 1U) << "the elements stay";
  EXPECT_EQ(cache.profile_id, 0);
  own.sizes[10] = 5;
  EXPECT_EQ(cache.load_from_db(own.pointer(), db(), 1, 1, 1), 0) << "the next load reads again";
  EXPECT_EQ(cache.profile_id, 1);
}

TEST_P(ProfileCache, the_two_statements_go_out_to_the_letter) {
  const StatementLog log(db());
  EXPECT_EQ(load(2), 0);
  EXPECT_EQ(log.count("SELECT PROFID, CSLINP.LABELID, SEQNO, ALFLG, LTYPE, NAME, LISTTYPE FROM CSLINP, CSLABELV WHERE "
                      "CSLINP.LABELID=CSLABELV.LABELID AND PROFID=2 AND ALFLG<>'YES'"),
            1);
  EXPECT_EQ(log.count("SELECT PROFID, CSCINP.CHRTID, SEQNO, NAME, DESCR, CTYPE FROM CSCINP, CSCHRTV WHERE "
                      "CSCINP.CHRTID=CSCHRTV.CHRTID AND PROFID=2"),
            1);
  EXPECT_EQ(log.count("NAME='STATION' AND LTYPE='SAMPLE'"), 1);
  EXPECT_EQ(log.count("NAME='OPERATOR' AND LTYPE='SAMPLE'"), 1);
  EXPECT_EQ(log.count("STNID=1"), 1);
  EXPECT_EQ(log.count("USERID=1"), 1);
}

TEST_P(ProfileCache, a_loaded_profile_of_fixed_size_asks_neither_database_nor_engine) {
  EXPECT_EQ(load(2), 0);
  const std::size_t calls = engine.calls.size();
  const StatementLog log(db());
  EXPECT_EQ(load(2), 0);
  EXPECT_TRUE(log.statements.empty());
  EXPECT_EQ(engine.calls.size(), calls);
}

TEST_P(ProfileCache, auto_labels_stay_as_they_were_for_another_station_and_user) {
  EXPECT_EQ(load(2, 1, 1), 0);
  EXPECT_EQ(load(2, 2, 2), 0);
  EXPECT_THAT(auto_labels(), ElementsAre("30=North", "31=anna"));
}

TEST_P(ProfileCache, a_profile_of_dynamic_size_is_read_on_every_call) {
  EXPECT_EQ(load(4, 1, 1), 0);
  plant.station(3, "East");
  EXPECT_EQ(load(4, 3, 2), 0);
  EXPECT_THAT(auto_labels(), ElementsAre("30=East", "31=ben"));
}

TEST_P(ProfileCache, a_change_of_the_profile_is_not_seen_until_the_cache_is_cleared) {
  EXPECT_EQ(load(1), 0);
  execute("INSERT INTO CSLINP (PROFID, LABELID, SEQNO, ALFLG) VALUES (1, 20, 20, 'NO')");
  EXPECT_EQ(load(1), 0);
  EXPECT_EQ(cache.size(), 1U);
  cache.ClearProfileArray();
  EXPECT_EQ(load(1), 0);
  EXPECT_EQ(cache.size(), 2U);
}

TEST_P(ProfileCache, another_profile_replaces_everything) {
  EXPECT_EQ(load(2), 0);
  EXPECT_EQ(load(3, 2, 2), 0);
  EXPECT_THAT(elements(), ElementsAre("l20", "l22"));
  EXPECT_THAT(auto_labels(), ElementsAre("30=South", "31=ben"));
  EXPECT_EQ(cache.max_subgroup_size, 0);
  EXPECT_TRUE(cache.variable_chars.IsEmpty());
}

TEST_P(ProfileCache, clearing_forgets_everything) {
  EXPECT_EQ(load(4), 0);
  cache.ClearProfileArray();
  EXPECT_TRUE(cache.empty());
  EXPECT_EQ(cache.profile_id, 0);
  for (const CString* list :
       {&cache.all_chars, &cache.variable_chars, &cache.defect_chars, &cache.total_chars, &cache.label_ids})
    EXPECT_TRUE(list->IsEmpty());
  EXPECT_EQ(cache.max_subgroup_size, 0);
  EXPECT_FALSE(cache.has_dynamic_size);
  EXPECT_TRUE(cache.auto_labels.empty());
}

TEST_P(ProfileCache, profile_0_of_an_empty_cache_counts_as_loaded) {
  EXPECT_EQ(load(0), 0);
  EXPECT_TRUE(cache.empty());
}

TEST_P(ProfileCache, a_closed_connection_is_open_failed_and_leaves_no_elements) {
  EXPECT_EQ(load(2), 0);
  CDatabase closed;
  EXPECT_EQ(cache.load_from_db(engine.pointer(), closed, 1, 1, 1), result_code::open_failed);
  EXPECT_TRUE(cache.empty());
}

TEST_P(ProfileCache, build_extra_info_of_an_empty_collection_fails_and_changes_nothing) {
  cache.max_subgroup_size = 7;
  EXPECT_EQ(cache.build_extra_info(engine.pointer(), db(), 1, 1, 5), result_code::bad_value);
  EXPECT_EQ(cache.max_subgroup_size, 7);
  EXPECT_EQ(cache.profile_id, 0);
}

// Auto labels

TEST_P(ProfileCache, station_and_operator_become_auto_labels_whether_or_not_the_profile_lists_them) {
  EXPECT_EQ(load(1), 0);
  EXPECT_THAT(auto_labels(), ElementsAre("30=North", "31=anna"));
}

TEST_P(ProfileCache, a_station_whose_name_is_only_blanks_adds_no_auto_label) {
  plant.station(3, "   ");
  EXPECT_EQ(load(1, 3, 1), 0);
  EXPECT_THAT(auto_labels(), ElementsAre("31=anna"));
}

TEST_P(ProfileCache, names_of_stations_and_users_are_trimmed_at_both_ends) {
  plant.station(3, "  West ");
  plant.user(3, " carl  ", "Carl");
  EXPECT_EQ(load(1, 3, 3), 0);
  EXPECT_THAT(auto_labels(), ElementsAre("30=West", "31=carl"));
}

TEST_P(ProfileCache, an_unknown_station_or_user_adds_no_auto_label) {
  EXPECT_EQ(load(1, 77, 78), 0);
  EXPECT_TRUE(cache.auto_labels.empty());
}

TEST_P(ProfileCache, without_a_label_of_that_name_nobody_asks_for_the_station) {
  execute("DELETE FROM CSLABEL WHERE LABELID = 30");
  execute("UPDATE CSLABEL SET LTYPE = 'PIECE' WHERE LABELID = 31");
  const StatementLog log(db());
  EXPECT_EQ(load(1), 0);
  EXPECT_TRUE(cache.auto_labels.empty());
  EXPECT_EQ(log.count("STNID="), 0);
  EXPECT_EQ(log.count("USERID="), 0);
}

TEST_P(ProfileCache, tables_of_stations_and_users_that_refuse_are_passed_over_in_silence) {
  database().spoil();
  execute("DROP VIEW CSSTNV");
  execute("DROP VIEW CSUSERV");
  EXPECT_EQ(load(1), 0);
  EXPECT_EQ(cache.profile_id, 1);
  EXPECT_TRUE(cache.auto_labels.empty());
}

TEST_P(ProfileCache, adding_an_auto_label_twice_leaves_one_pair_with_the_second_value) {
  cache.AddAutoLabel(7, "first");
  cache.AddAutoLabel(8, "other");
  cache.AddAutoLabel(7, "second");
  EXPECT_THAT(auto_labels(), ElementsAre("7=second", "8=other"));
}

TEST_P(ProfileCache, adding_an_empty_value_does_nothing) {
  cache.AddAutoLabel(7, "first");
  cache.AddAutoLabel(7, "");
  cache.AddAutoLabel(8, "");
  EXPECT_THAT(auto_labels(), ElementsAre("7=first"));
}

TEST_P(ProfileCache, saving_auto_labels_hands_each_to_the_engine_in_order) {
  cache.AddAutoLabel(8, "b");
  cache.AddAutoLabel(7, "ä");
  EXPECT_EQ(cache.SaveAutoLabels(12, engine.pointer()), 0);
  EXPECT_THAT(engine.calls, ElementsAre("SetLabelValue 12 0 8 0 b", "SetLabelValue 12 0 7 0 ä"));
}

TEST_P(ProfileCache, saving_auto_labels_of_sample_0_is_bad_value) {
  cache.AddAutoLabel(8, "b");
  EXPECT_EQ(cache.SaveAutoLabels(0, engine.pointer()), result_code::bad_value);
  EXPECT_TRUE(engine.calls.empty());
}

TEST_P(ProfileCache, saving_auto_labels_stops_at_the_first_that_fails) {
  cache.AddAutoLabel(1, "a");
  cache.AddAutoLabel(2, "b");
  cache.AddAutoLabel(3, "c");
  engine.fail("SetLabelValue", E_OUTOFMEMORY, 2);
  const Failure failure = failure_of([&] { cache.SaveAutoLabels(12, engine.pointer()); });
  EXPECT_EQ(failure.kind, FailureKind::automation);
  EXPECT_EQ(failure.code, long{E_OUTOFMEMORY});
  EXPECT_EQ(engine.count("SetLabelValue"), 2);
}

// The engine

TEST_P(ProfileCache, a_null_engine_is_e_pointer_once_it_is_needed) {
  const Failure failure = failure_of([&] { cache.load_from_db(nullptr, db(), 1, 1, 1); });
  EXPECT_EQ(failure.kind, FailureKind::automation);
  EXPECT_EQ(failure.code, long{E_POINTER});
  plant.profile(9, {});
  EXPECT_EQ(cache.load_from_db(nullptr, db(), 1, 1, 9), result_code::bad_value) << "nothing to ask about";
}

TEST_P(ProfileCache, a_failing_engine_call_is_raised_with_its_own_code) {
  for (const char* method : {"GetCharacteristicFlags", "GetSubgroupSize"}) {
    engine.fail(method, DISP_E_OVERFLOW);
    const Failure failure = failure_of([&] { load(2); });
    EXPECT_EQ(failure.kind, FailureKind::automation) << method;
    EXPECT_EQ(failure.code, long{DISP_E_OVERFLOW}) << method;
    EXPECT_EQ(cache.profile_id, 0) << method;
    engine.mend(method);
  }
  EXPECT_EQ(load(2), 0);
}

// Look-ups

TEST_P(ProfileCache, a_label_is_found_by_its_name) {
  EXPECT_EQ(oldde::GetLabelIDFromName(&db(), "Shift"), 20);
  EXPECT_EQ(oldde::GetLabelIDFromName(&db(), "nobody"), 0);
}

TEST_P(ProfileCache, a_label_of_type_piece_is_never_found) { EXPECT_EQ(oldde::GetLabelIDFromName(&db(), "Cavity"), 0); }

TEST_P(ProfileCache, a_label_whose_name_holds_an_apostrophe_is_not_found_and_nothing_is_raised) {
  plant.label(50, "Tom's", "SAMPLE");
  EXPECT_EQ(oldde::GetLabelIDFromName(&db(), "Tom's"), 0);
  EXPECT_EQ(oldde::GetLabelIDFromName(&db(), "Tom''s"), 50) << "whoever quotes it finds it";
}

TEST_P(ProfileCache, a_label_cannot_be_found_on_a_closed_connection_and_nothing_is_raised) {
  CDatabase closed;
  EXPECT_EQ(oldde::GetLabelIDFromName(&closed, "Shift"), 0);
}

TEST_P(ProfileCache, get_auto_label_appends_and_is_false_only_on_a_closed_connection) {
  std::vector<int> labels{5};
  EXPECT_TRUE(oldde::get_auto_label(&db(), 2, labels));
  EXPECT_THAT(labels, ElementsAre(5, 24, 31));
  EXPECT_TRUE(oldde::get_auto_label(&db(), 1, labels));
  EXPECT_THAT(labels, ElementsAre(5, 24, 31));
  CDatabase closed;
  EXPECT_FALSE(oldde::get_auto_label(&closed, 2, labels));
}

TEST_P(ProfileCache, get_char_in_prof_gives_the_profiles_of_a_characteristic_each_once) {
  std::vector<int> profiles{2};
  EXPECT_TRUE(oldde::get_char_in_prof(&db(), 10, profiles));
  EXPECT_THAT(profiles, testing::UnorderedElementsAre(2, 1));
  EXPECT_TRUE(oldde::get_char_in_prof(&db(), 999, profiles));
  EXPECT_EQ(profiles.size(), 2U);
  CDatabase closed;
  EXPECT_FALSE(oldde::get_char_in_prof(&closed, 10, profiles));
}

TEST_P(ProfileCache, look_ups_go_out_with_their_filters_to_the_letter) {
  const StatementLog log(db());
  std::vector<int> found;
  oldde::get_auto_label(&db(), 2, found);
  oldde::get_char_in_prof(&db(), 10, found);
  EXPECT_EQ(log.count("PROFID=2 AND ALFLG='YES' ORDER BY SEQNO"), 1);
  EXPECT_EQ(log.count("FROM CSCINPV WHERE "), 1);
}

INSTANTIATE_TEST_SUITE_P(Servers, ProfileCache, test_support::main_servers(), test_support::server_name);

}  // namespace
