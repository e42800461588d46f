# Installs the build tree into a scratch prefix, then configures, builds and runs the
# consumer project against it.
file(REMOVE_RECURSE "${WORK_DIR}")
set(prefix "${WORK_DIR}/prefix")

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "failed (${result}): ${ARGN}")
  endif()
endfunction()

run(${CMAKE_COMMAND} --install "${BINARY_DIR}" --prefix "${prefix}")
run(${CMAKE_COMMAND} -S "${SOURCE_DIR}/tests/consumer" -B "${WORK_DIR}/build"
    -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_BUILD_TYPE=RelWithDebInfo)
run(${CMAKE_COMMAND} --build "${WORK_DIR}/build")
run(${CMAKE_COMMAND} -E env "LD_LIBRARY_PATH=${prefix}/lib:${prefix}/lib/x86_64-linux-gnu"
    "${WORK_DIR}/build/consumer")
# The installed tool finds the library in its own prefix, with no search path set.
run("${prefix}/bin/tessarity-run" --help)
# The Python package, looked for where Debian's python3 looks under the prefix, finds the
# library through its rpath.
if(PYTHON)
  run("${PYTHON}" -c "import site, sys; sys.path[:0] = site.getsitepackages(['${prefix}']); \
import tessarity; assert tessarity.__file__.startswith('${prefix}'); tessarity.Engine(0)")
endif()
