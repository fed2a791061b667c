# The fuzzers, shared by the fuzz configuration (fuzz/CMakeLists.txt) and the test build
# (fuzz/fuzztests.cmake). Fuzzer NAME is built from fuzz_NAME.cpp; its seeds are in
# corpus/NAME/, its known reproducers in regressions/NAME/, and its dictionary is
# KAIRON_FUZZ_DICT_NAME (empty for none).
set(KAIRON_FUZZERS
    osc_decode
    osc_roundtrip
    projectdocument
    timerstatesnapshot
    internetdate
    colorhex
    livestate
    xlsx
    ods
    csv
)
set(KAIRON_FUZZ_DICT_osc_decode osc.dict)
set(KAIRON_FUZZ_DICT_osc_roundtrip osc.dict)
set(KAIRON_FUZZ_DICT_projectdocument json.dict)
set(KAIRON_FUZZ_DICT_timerstatesnapshot json.dict)
set(KAIRON_FUZZ_DICT_internetdate date.dict)
set(KAIRON_FUZZ_DICT_colorhex color.dict)
set(KAIRON_FUZZ_DICT_livestate json.dict)
set(KAIRON_FUZZ_DICT_xlsx xlsx.dict)
set(KAIRON_FUZZ_DICT_ods ods.dict)
