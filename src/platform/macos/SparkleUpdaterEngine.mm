#include "platform/macos/MacPorts.h"

#import <Sparkle/Sparkle.h>
#include <functional>

namespace {

NSString *const canCheck = @"canCheckForUpdates";

} // namespace

/// Calls back, on the main thread, when an updater can check or no longer can. Until it is gone.
@interface TGCanCheckObserver : NSObject

- (instancetype)initWithUpdater:(SPUUpdater *)updater callBack:(std::function<void()>)callBack;
- (void)end;

@end

@implementation TGCanCheckObserver {
    SPUUpdater *_updater;
    std::function<void()> _callBack;
}

- (instancetype)initWithUpdater:(SPUUpdater *)updater callBack:(std::function<void()>)callBack
{
    self = [super init];
    if (self) {
        _updater = updater;
        _callBack = std::move(callBack);
        [_updater addObserver:self forKeyPath:canCheck options:0 context:nullptr];
    }
    return self;
}

- (void)end
{
    [_updater removeObserver:self forKeyPath:canCheck];
    _updater = nil;
    _callBack = nullptr;
}

- (void)observeValueForKeyPath:(NSString *)keyPath
                      ofObject:(id)object
                        change:(NSDictionary<NSKeyValueChangeKey, id> *)change
                       context:(void *)context
{
    dispatch_async(dispatch_get_main_queue(), ^{
        if (self->_callBack)
            self->_callBack();
    });
}

@end

namespace tallyglass {

namespace {

class SparkleUpdaterEngine final : public UpdaterEngine
{
public:
    SparkleUpdaterEngine() = default;
    SparkleUpdaterEngine(const SparkleUpdaterEngine &) = delete;
    SparkleUpdaterEngine &operator=(const SparkleUpdaterEngine &) = delete;
    ~SparkleUpdaterEngine() override { [m_canCheckObservation end]; }

    void start() override;
    bool canCheckForUpdates() const override;
    void checkForUpdates() override;

private:
    SPUStandardUpdaterController *m_updaterController = nil; ///< until started
    TGCanCheckObserver *m_canCheckObservation = nil;
};

void SparkleUpdaterEngine::start()
{
    m_updaterController = [[SPUStandardUpdaterController alloc] initWithStartingUpdater:YES
                                                                        updaterDelegate:nil
                                                                     userDriverDelegate:nil];
    m_canCheckObservation =
        [[TGCanCheckObserver alloc] initWithUpdater:m_updaterController.updater
                                           callBack:[this] { Q_EMIT canCheckForUpdatesChanged(); }];
}

bool SparkleUpdaterEngine::canCheckForUpdates() const
{
    return m_updaterController.updater.canCheckForUpdates;
}

void SparkleUpdaterEngine::checkForUpdates()
{
    [m_updaterController.updater checkForUpdates];
}

} // namespace

std::unique_ptr<UpdaterEngine> makeSparkleUpdaterEngine()
{
    return std::make_unique<SparkleUpdaterEngine>();
}

} // namespace tallyglass
