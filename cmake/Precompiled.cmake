# kestrel_precompile(TARGET HEADER...): the standard headers that most sources include, and the given ones, are
# parsed once for a target. Every source still includes what it uses: other builds have no precompiled headers.

function(kestrel_precompile target)
    target_precompile_headers(${target} PRIVATE
        <algorithm> <array> <chrono> <cstdint> <filesystem> <functional> <map> <memory> <optional> <span> <stdexcept>
        <string> <string_view> <utility> <vector> ${ARGN})
endfunction()
