#include "platform/Files.h"

#import <Foundation/Foundation.h>

namespace tallyglass {

bool isPackage(const std::string &path)
{
    // To the system a framework, for one, is no package.
    if (hasPackageExtension(path))
        return true;
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
