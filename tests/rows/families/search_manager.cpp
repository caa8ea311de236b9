// The operations of search manager.
#include "ipc/src/plugin/tolm_search_manager_adaptor_ipc.h"
#include "rows.h"

namespace hbbtv::test {

using Adaptor = TolmSearchManagerAdaptor;

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{
        "search_manager",
        "[ipc_search_manager]",
        "tolm_search_manager_adaptor_ipc.cpp",
        &Adaptor::DeleteInstance,
        {
            {"SearchManager_Create", &Adaptor::SearchManager_Create},
            {"SearchManager_Destroy", &Adaptor::SearchManager_Destroy},
            {"SearchManager_RegisterCallback", &Adaptor::SearchManager_RegisterCallback},
            {"SearchManager_CreateSearch", &Adaptor::SearchManager_CreateSearch},
            {"SearchManager_DestroySearch", &Adaptor::SearchManager_DestroySearch},
            {"MetaSearch_CreateQuery", &Adaptor::MetaSearch_CreateQuery},
            {"MetaSearch_GetResult", &Adaptor::MetaSearch_GetResult},
            {"MetaSearch_GetSearchTarget", &Adaptor::MetaSearch_GetSearchTarget},
            {"MetaSearch_SetQuery", &Adaptor::MetaSearch_SetQuery},
            Row("MetaSearch_FindProgrammesFromStream", &Adaptor::MetaSearch_FindProgrammesFromStream)
                .Sends("time", 4000000153.0),
            {"MetaSearch_AddChannelConstraint", &Adaptor::MetaSearch_AddChannelConstraint},
            {"SearchResults_Release", &Adaptor::SearchResults_Release},
            {"SearchResults_GetOffset", &Adaptor::SearchResults_GetOffset},
            {"SearchResults_GetLength", &Adaptor::SearchResults_GetLength},
            {"SearchResults_GetTotalSize", &Adaptor::SearchResults_GetTotalSize},
            {"SearchResults_GetProgramme", &Adaptor::SearchResults_GetProgramme},
            {"SearchResults_GetResults", &Adaptor::SearchResults_GetResults},
            {"SearchResults_Abort", &Adaptor::SearchResults_Abort},
            {"Query_Release", &Adaptor::Query_Release},
            {"Query_And", &Adaptor::Query_And},
            {"Query_Or", &Adaptor::Query_Or},
            {"Query_Not", &Adaptor::Query_Not},
        },
    };
    return family;
}

}  // namespace hbbtv::test
