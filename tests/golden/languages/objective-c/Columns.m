#import <Foundation/Foundation.h>

/* <@text:anchor#overview> */
static const NSInteger kDefaultWidth = 12; // <@control:slider#width [39,41] {"min":1,"max":40}>

int main(void) {
  @autoreleasepool {
    NSDictionary<NSString *, NSNumber *> *widths = @{
      @"name" : @(kDefaultWidth),
      @"size" : @8,
      @"date" : @(kDefaultWidth),
    };
    NSInteger total = 2 * ((NSInteger)widths.count - 1);
    // <@task#sum>
    for (NSNumber *width in widths.allValues)
      total += width.integerValue; // <@output#total [6,11] {"format":"short"}>
    // <@task#sum>
    NSLog(@"%lu columns, %ld characters", widths.count, (long)total);
  }
  return 0;
}
// <@appendix>
// <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
