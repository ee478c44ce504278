#include "platform/Folders.h"

#import <Foundation/Foundation.h>

namespace tallyglass {

bool isPackage(const std::string &path)
{
    @autoreleasepool { // called from workers, for every folder
        NSURL *url = [NSURL fileURLWithFileSystemRepresentation:path.c_str()
                                                    isDirectory:YES
                                                  relativeToURL:nil];
        NSNumber *answer = nil;
        return
            [url getResourceValue:&answer forKey:NSURLIsPackageKey error:nil] && answer.boolValue;
    }
}

} // namespace tallyglass
