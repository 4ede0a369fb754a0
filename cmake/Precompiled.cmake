# kestrel_precompile(TARGET HEADER...): parses common standard headers and the given ones once for a target.
# Every source still includes the headers that it uses, because other builds have no precompiled headers.

function(kestrel_precompile target)
    target_precompile_headers(${target} PRIVATE
        <algorithm> <array> <chrono> <cstdint> <filesystem> <functional> <map> <memory> <optional> <span> <stdexcept>
        <string> <string_view> <utility> <vector> ${ARGN})
endfunction()
