#include "ui/ModelRow.h"

#include "model/Formatting.h"

#include <algorithm>
#include <tuple>

namespace tallyglass {

namespace {

constexpr std::size_t shownModels = 5;

struct Candidate
{
    UsageProvider provider;
    const ModelUsageSummary *model;
};

} // namespace

QList<ModelRow> topModels(const WindowUsageSummary &window)
{
    std::vector<Candidate> candidates;
    for (const ProviderUsageSummary &provider : window.providers) {
        for (const ModelUsageSummary &model : provider.models)
            candidates.push_back({provider.provider, &model});
    }
    std::ranges::sort(candidates, {}, [](const Candidate &candidate) {
        return std::tuple(-candidate.model->tokens.totalTokens(), candidate.model->model,
                          candidate.provider);
    });
    candidates.resize(std::min(candidates.size(), shownModels));

    QList<ModelRow> rows;
    for (const auto &[provider, model] : candidates) {
        ModelRow row;
        row.provider = rawValue(provider);
        row.name = model->model;
        row.tokensText = formatTokenCount(model->tokens.totalTokens());
        rows += row;
    }
    return rows;
}

} // namespace tallyglass
