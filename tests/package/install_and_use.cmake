# Installs the build into an empty folder and builds and runs programs on what is there: one that is
# not ours, and the examples.
# Takes BUILD (the build folder), SOURCE (of the project) and WORK (an own folder).
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${ARGN}\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

# run_saying(WORDS PROGRAM ARGUMENTS ...): the program prints the words.
function(run_saying words)
  run(${ARGN})
  string(FIND "${output}" "${words}" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "${ARGN}\nsays\n${output}\nand not \"${words}\"")
  endif()
endfunction()

file(REMOVE_RECURSE ${WORK})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/prefix)

run(${CMAKE_COMMAND} -S ${SOURCE}/tests/package/consumer -B ${WORK}/consumer -G Ninja
    -DCMAKE_PREFIX_PATH=${WORK}/prefix)
run(${CMAKE_COMMAND} --build ${WORK}/consumer)
run(${WORK}/consumer/consumer ${WORK}/prefix/share/tarvex/)

run(${CMAKE_COMMAND} -S ${SOURCE}/examples -B ${WORK}/examples -G Ninja -DCMAKE_PREFIX_PATH=${WORK}/prefix)
run(${CMAKE_COMMAND} --build ${WORK}/examples)
set(examples ${WORK}/examples)
run_saying("N 5236374.1302 E 466723.9302 EL 450.0000" ${examples}/grid_coordinates)
run_saying("scale 1.00002" ${examples}/site_localization)
run_saying("BM1 is in ${WORK}/new.crd" ${examples}/store_point ${WORK}/new.crd)
run_saying("HRMS 0.0" ${examples}/receiver_positions)
file(WRITE ${WORK}/road.cl "1,100.000,L,466000.0,5236000.0\n2,300.000,L,466000.0,5236200.0\n0,0,L,0,0\n")
run_saying("station 125.000 offset +40.000" ${examples}/stake_out ${WORK}/road.cl)
run_saying("Access road: 2 key points, station 50.000 to 150.000" ${examples}/landxml_alignment)

# The program itself, with its data, the modules that it binds (this system's projection is in one), its pages.
file(WRITE ${WORK}/place.txt "47.5 19 100\n")
run_saying("239563.9217 646425.4103" ${CMAKE_COMMAND} -E env XDG_DATA_HOME=${WORK}/data
           ${WORK}/prefix/bin/tarvex convert ${WORK}/place.txt --system HUNGARY/HD72/EOV)
foreach(page IN ITEMS man/man1/tarvex-road-stake.1.gz bash-completion/completions/tarvex doc/tarvex/docs/guide.md)
  if(NOT EXISTS ${WORK}/prefix/share/${page})
    message(FATAL_ERROR "${page} was not installed.")
  endif()
endforeach()
